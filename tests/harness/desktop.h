#pragma once

#include "childprocess.h"
#include "outcome.h"
#include "xscreen.h"

/// A screen with a small window manager: one of its own (Xvfb, openbox), or the one that the environment
/// variable TALVEX_TEST_DISPLAY names, to look on.
class Desktop
{
public:
    Outcome start();

    /// The display's name (":7").
    [[nodiscard]] const QString& name() const { return displayName; }
    [[nodiscard]] XScreen& screen() { return xscreen; }

    /// Stores what the screen shows as a PNG file; false: it could not be stored.
    [[nodiscard]] bool savePicture(const QString& path) { return xscreen.picture().save(path, "PNG"); }

private:
    Outcome startServer();
    Outcome startWindowManager();

    QString displayName;
    ChildProcess server;
    ChildProcess windowManager; ///< after the server: it must go first
    XScreen xscreen;            ///< last: closed before the server ends
};
