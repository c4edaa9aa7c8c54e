#pragma once

#include "tests/support/boxes.h"
#include "tests/support/inside.h"
#include "ui/mainwindow.h"
#include "virtualunit/hidapi/virtualbus.h"

#include <QByteArray>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QTest>

#include <functional>
#include <memory>

/// The main window, shown, with `boxes` handling its message boxes as a user would. Starts with an empty
/// virtual bus, a clean program directory and the program's global state as at its start; cleans up what the
/// window leaves until the program ends. Only one may exist at a time.
class TestWindow
{
public:
    TestWindow();
    ~TestWindow();
    Q_DISABLE_COPY_MOVE(TestWindow)

    MainWindow* operator->() const { return window.get(); }
    MainWindow& operator*() const { return *window; }
    [[nodiscard]] UpdateChecker& checker() const { return *window->leftovers().checker; }
    [[nodiscard]] LogDownloader& downloader() const { return state().logDownloader; }
    /// The window's private state.
    [[nodiscard]] inside::Window state() const { return inside::of(*window); }

    [[nodiscard]] QPushButton& button(const char* name) const { return child<QPushButton>(name); }
    [[nodiscard]] QLabel& label(const char* name) const { return child<QLabel>(name); }
    [[nodiscard]] QProgressBar& bar(const char* name) const { return child<QProgressBar>(name); }

    /// Clicks the button with the mouse.
    void press(const char* name) const { QTest::mouseClick(&button(name), Qt::LeftButton); }

    /// Ctrl+Shift+L, which offers the log.
    void pressLogKey() const
    {
        QTest::keyClick(&*window, Qt::Key_L, Qt::ControlModifier | Qt::ShiftModifier);
    }

    /// Presses Connect and checks that the search freed everything that it got from the HID library.
    void pressConnect() const
    {
        press("connect_button");
        QCOMPARE(virtualbus::enumerationsNotFreed(), 0);
    }

    /// Texts, values, enabled and visible states of all controls, to compare one moment with another.
    [[nodiscard]] QStringList controls() const;

    Boxes boxes;

private:
    template<typename Widget> Widget& child(const char* name) const
    {
        auto* found = window->findChild<Widget*>(name);
        if (found == nullptr)
            qFatal("no %s in the window", name);
        return *found;
    }

    std::unique_ptr<MainWindow> window;
};

/// Creates a file in the program's directory, replacing any earlier one.
void placeFile(const QString& name, const QByteArray& content);

/// Creates a service file, as a user would place it by hand: connecting a unit then contacts no server and
/// enables Update Device.
void placeServiceFile(const QByteArray& image = "image");

/// Makes the test fail unless a diagnostic line with this beginning is written from now on; the system's
/// error text that follows is ignored.
void expectDiagnostic(const QString& beginning);

/// Calls `act` in the program's event loop. True if the program quits with exit code 0.
[[nodiscard]] bool quits(const std::function<void()>& act);

/// Calls `act` in the program's event loop, which runs until `isReached` holds and for some more ticks of 1
/// ms. True if the program has not quit by then.
[[nodiscard]] bool runsOn(const std::function<void()>& act, const std::function<bool()>& isReached);
