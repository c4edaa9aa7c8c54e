#pragma once

#include "tests/harness/childprocess.h"
#include "tests/harness/outcome.h"
#include "tests/harness/xscreen.h"

#include <QVector>

/// A screen with a small window manager: a private one (Xvfb, openbox), or the one named by the environment
/// variable TALVEX_TEST_DISPLAY, so that a person can watch.
class Desktop
{
public:
    /// `screens` are the X server's options for a private screen. `resources` ("Xft.dpi:\t192\n", with the
    /// tab) are set before any program connects.
    Outcome start(const QStringList& screens = {"-screen", "0", "1024x768x24"},
                  const QByteArray& resources = {});

    /// Takes the screen away from all programs that use it. It must be a private one.
    void takeAway();

    /// The display's name (":7").
    [[nodiscard]] const QString& name() const { return displayName; }
    [[nodiscard]] XScreen& screen() { return xscreen; }

    /// The IDs of the X server and of the window manager, as far as they run and are this object's own.
    [[nodiscard]] QVector<qint64> processes() const;

    /// Saves a screenshot as a PNG file; false if it could not be saved.
    [[nodiscard]] bool savePicture(const QString& path) { return xscreen.picture().save(path, "PNG"); }

private:
    Outcome startServer(const QStringList& screens);
    Outcome startWindowManager();

    QString displayName;
    ChildProcess server;
    ChildProcess windowManager; ///< after the server: it must end first
    XScreen xscreen;            ///< last: closed before the server ends
};
