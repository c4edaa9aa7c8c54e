#include "tests/harness/desktop.h"

#include "tests/harness/waiting.h"

Outcome Desktop::start(const QStringList& screens, const QByteArray& resources)
{
    displayName = qEnvironmentVariable("TALVEX_TEST_DISPLAY");
    const bool own = displayName.isEmpty();
    if (own)
        STEP(startServer(screens));
    if (!xscreen.open(displayName))
        return Outcome("cannot open the display " + displayName);
    if (!resources.isEmpty())
        xscreen.setResources(resources);
    return own ? startWindowManager() : Outcome();
}

void Desktop::takeAway()
{
    xscreen.shut(); // or Xlib would end this process, too
    windowManager.end();
    server.end();
}

QVector<qint64> Desktop::processes() const
{
    QVector<qint64> all;
    for (const QProcess* process : {&server, &windowManager})
        if (process->state() == QProcess::Running)
            all += process->processId();
    return all;
}

Outcome Desktop::startServer(const QStringList& screens)
{
    server.setProcessChannelMode(QProcess::SeparateChannels);
    server.start("Xvfb", QStringList{"-displayfd", "1", "-nolisten", "tcp", "-noreset"} + screens);
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
