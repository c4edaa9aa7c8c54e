#pragma once

#include <QImage>
#include <QPoint>
#include <QString>
#include <QVector>

#include <initializer_list>
#include <optional>

struct _XDisplay;

/// A connection to an X server: sees what a user sees and sends a user's input (XTEST).
class XScreen
{
public:
    using Window = unsigned long;

    XScreen() = default;
    ~XScreen();
    Q_DISABLE_COPY_MOVE(XScreen)

    /// Opens the display of this name (":7"); false if it does not exist or lacks the XTEST extension.
    [[nodiscard]] bool open(const QString& name);

    /// Closes the connection; only picture() may be called afterwards.
    void shut();

    /// Whether a window manager that follows the common conventions is running, and shows windows that ask
    /// for it.
    [[nodiscard]] bool hasWindowManager();

    /// The position of the window's inner top left corner on the screen, in pixels; nullopt if it is not
    /// shown.
    [[nodiscard]] std::optional<QPoint> originOf(Window window);

    /// Moves the pointer there; returns whether this window, or a part of it, is under the pointer.
    [[nodiscard]] bool pointAt(QPoint position, Window window);

    /// The window's inner size in screen pixels; empty if there is no such window.
    [[nodiscard]] QSize sizeOf(Window window);

    /// The icon that the window has given the window manager, in each of its sizes, in the window's order.
    [[nodiscard]] QVector<QImage> icons(Window window);

    /// What menus recognise the window by (WM_CLASS, its second part); empty if it has no such property.
    [[nodiscard]] QString classOf(Window window);

    /// Whether the server sends keys to this window.
    [[nodiscard]] bool hasFocus(Window window);

    /// Presses and releases the left button where the pointer is.
    void click();

    /// Presses these keys (X key symbols) in order and releases them in reverse order.
    void pressKeys(std::initializer_list<unsigned long> symbols);

    /// Moves the window's top left corner, including the frame, there, as far as the window manager allows.
    void move(Window window, QPoint position);

    /// Gives the window's inner area this size, as dragging its frame does.
    void resize(Window window, QSize size);

    /// Sets the server's resources ("Xft.dpi:\t192\n", with the tab), for programs started from now on.
    void setResources(const QByteArray& resources);

    /// Asks the window manager to close the window, as its close button does.
    void close(Window window);

    /// A screenshot of the whole screen; a null image if the server refuses or there is no connection.
    [[nodiscard]] QImage picture();

private:
    _XDisplay* display = nullptr; ///< owned
    Window trial = 0;             ///< asks the window manager to be shown
};
