#pragma once

#include "tests/harness/childprocess.h"
#include "tests/harness/outcome.h"
#include "tests/harness/xscreen.h"

/// A screen with a small window manager: one of its own (Xvfb, openbox), or the one that the environment
/// variable TALVEX_TEST_DISPLAY names, to look on.
class Desktop
{
public:
    /// `screens` are the server's options for a screen of its own. `resources` ("Xft.dpi:\t192\n", with the
    /// tab) are set before any program sees it.
    Outcome start(const QStringList& screens = {"-screen", "0", "1024x768x24"},
                  const QByteArray& resources = {});

    /// Takes the screen away from all who use it. It must be one of its own.
    void takeAway();

    /// The display's name (":7").
    [[nodiscard]] const QString& name() const { return displayName; }
    [[nodiscard]] XScreen& screen() { return xscreen; }

    /// Stores what the screen shows as a PNG file; false: it could not be stored.
    [[nodiscard]] bool savePicture(const QString& path) { return xscreen.picture().save(path, "PNG"); }

private:
    Outcome startServer(const QStringList& screens);
    Outcome startWindowManager();

    QString displayName;
    ChildProcess server;
    ChildProcess windowManager; ///< after the server: it must go first
    XScreen xscreen;            ///< last: closed before the server ends
};
