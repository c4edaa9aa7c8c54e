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

/// The main window as a user meets it, shown, with that user in front of its boxes. Begins on an empty
/// virtual bus, in a clean program directory and with the state that is kept once for the whole program as at
/// its start; ends what the window leaves to the program's end. One at a time.
class TestWindow
{
public:
    TestWindow();
    ~TestWindow();
    TestWindow(const TestWindow&) = delete;
    TestWindow& operator=(const TestWindow&) = delete;

    MainWindow* operator->() const { return window.get(); }
    MainWindow& operator*() const { return *window; }
    [[nodiscard]] UpdateChecker& checker() const { return *window->leftovers().checker; }
    [[nodiscard]] LogDownloader& downloader() const { return state().logDownloader; }
    /// What the window keeps to itself.
    [[nodiscard]] inside::Window state() const { return inside::of(*window); }

    [[nodiscard]] QPushButton& button(const char* name) const { return child<QPushButton>(name); }
    [[nodiscard]] QLabel& label(const char* name) const { return child<QLabel>(name); }
    [[nodiscard]] QProgressBar& bar(const char* name) const { return child<QProgressBar>(name); }

    /// A click of the mouse on it.
    void press(const char* name) const { QTest::mouseClick(&button(name), Qt::LeftButton); }

    /// Connect; the search gives back all that it asked the HID library for.
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

/// A file beside the program; of an earlier one nothing is left.
void placeFile(const QString& name, const QByteArray& content);

/// A firmware file placed by hand: with it, connecting a unit asks no server and enables Update Device.
void placeServiceFile(const QByteArray& image = "image");

/// The test fails unless a diagnostic line that begins so is written from now on; the system's error text
/// that follows in it does not count.
void expectDiagnostic(const QString& beginning);

/// Runs the program's event loop, with `act` in it. True if the program quits, with exit code 0.
[[nodiscard]] bool quits(const std::function<void()>& act);

/// Runs the program's event loop, with `act` in it, until `isReached` holds, and some ticks of 1 ms more.
/// True if the program has not quit by then.
[[nodiscard]] bool runsOn(const std::function<void()>& act, const std::function<bool()>& isReached);
