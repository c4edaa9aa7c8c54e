#pragma once

#include <QImage>
#include <QPoint>
#include <QString>

#include <initializer_list>
#include <optional>

struct _XDisplay;

/// One connection to an X server: looks at it as a user does, and gives it a user's input (XTEST).
class XScreen
{
public:
    using Window = unsigned long;

    XScreen() = default;
    ~XScreen();
    XScreen(const XScreen&) = delete;
    XScreen& operator=(const XScreen&) = delete;

    /// Opens the display of this name (":7"); false: there is none, or it lacks the XTEST extension.
    [[nodiscard]] bool open(const QString& name);

    /// Ends the connection; nothing but picture() may be asked for then.
    void shut();

    /// Whether a window manager that follows the common conventions is at work.
    [[nodiscard]] bool hasWindowManager();

    /// Where the window's upper left inner corner is on the screen, in pixels; nothing: it is not shown.
    [[nodiscard]] std::optional<QPoint> originOf(Window window);

    /// Moves the pointer there; returns whether this window, or a part of it, is what lies under it.
    [[nodiscard]] bool pointAt(QPoint position, Window window);

    /// The window's inner size in pixels of the screen; empty: there is no such window.
    [[nodiscard]] QSize sizeOf(Window window);

    /// Presses and releases the left button where the pointer is.
    void click();

    /// Presses these keys (X key symbols) one after the other and releases them backwards.
    void pressKeys(std::initializer_list<unsigned long> symbols);

    /// Moves the window's upper left corner, frame included, there, as far as the window manager allows.
    void move(Window window, QPoint position);

    /// Sets the server's resources ("Xft.dpi:\t192\n", with the tab), for programs that start from now on.
    void setResources(const QByteArray& resources);

    /// Asks the window manager to close the window, as its close button does.
    void close(Window window);

    /// The whole screen; a null image: the server would not tell, or there is none.
    [[nodiscard]] QImage picture();

private:
    _XDisplay* display = nullptr; ///< owned
};
