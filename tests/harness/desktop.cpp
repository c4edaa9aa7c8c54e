#include "desktop.h"

#include "waiting.h"

Outcome Desktop::start()
{
    displayName = qEnvironmentVariable("TALVEX_TEST_DISPLAY");
    const bool own = displayName.isEmpty();
    if (own)
        STEP(startServer());
    if (!xscreen.open(displayName))
        return Outcome("cannot open the display " + displayName);
    return own ? startWindowManager() : Outcome();
}

Outcome Desktop::startServer()
{
    server.setProcessChannelMode(QProcess::SeparateChannels);
    server.start("Xvfb", {"-displayfd", "1", "-screen", "0", "1024x768x24", "-nolisten", "tcp", "-noreset"});
    QByteArray number;
    const bool told = waitUntil([&] {
        number += server.readAllStandardOutput();
        return number.endsWith('\n') || server.state() == QProcess::NotRunning;
    });
    if (!told || !number.endsWith('\n'))
        return Outcome("Xvfb did not start: " + server.readAllStandardError() + server.errorString());
    displayName = ":" + number.trimmed();
    return {};
}

Outcome Desktop::startWindowManager()
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("DISPLAY", displayName);
    windowManager.setProcessEnvironment(environment);
    windowManager.setStandardOutputFile(QProcess::nullDevice());
    windowManager.setStandardErrorFile(QProcess::nullDevice());
    windowManager.start("openbox", {"--sm-disable"});
    if (!waitUntil([&] { return xscreen.hasWindowManager(); }))
        return Outcome("openbox did not start: " + windowManager.errorString());
    return {};
}
