// How a run ends, and what holds its end up.

#include "tests/harness/program.h"

#include "tests/harness/waiting.h"
#include "tests/support/filecontent.h"

#include <csignal>

Outcome Program::loseDisplay()
{
    watchEnd();
    desktop.takeAway();
    return {};
}

void Program::watchEnd()
{
    if (!ownTime)
        ownTime.emplace(process.processId(), desktop);
    else if (!isEndSeen)
        ownTime->look();
    isEndSeen = process.state() == QProcess::NotRunning;
}

bool Program::hasEnded()
{
    watchEnd();
    return isEndSeen;
}

Outcome Program::waitForExit(int code)
{
    if (!waitUntil([&] { return hasEnded(); }))
        return failed("the program does not end");
    if (process.exitStatus() != QProcess::NormalExit)
        return failed("the program crashed");
    if (process.exitCode() != code)
        return failed("exit code " + QString::number(process.exitCode()));
    return {};
}

Outcome Program::waitForDeathBy(int signal)
{
    if (!waitUntil([&] { return hasEnded(); }))
        return failed("still running");
    const bool killed = process.exitStatus() == QProcess::CrashExit && process.exitCode() == signal;
    return killed ? Outcome() : failed("ended with " + QString::number(process.exitCode()));
}

void Program::sendSignal(int signal)
{
    watchEnd();
    if (const qint64 id = process.processId(); id > 0) // 0, when it has ended, would be all of this group
        ::kill(static_cast<pid_t>(id), signal);
}

bool Program::isInSet(const QByteArray& set, int signal) const
{
    const QByteArray all = contentOf(QString("/proc/%1/status").arg(process.processId()));
    const QByteArray members = all.mid(all.indexOf(set + ':') + set.size() + 1).trimmed().left(16);
    return (members.toULongLong(nullptr, 16) >> (signal - 1) & 1U) != 0;
}

Outcome Program::waitForPromptExit(int code)
{
    constexpr std::chrono::seconds longest{3};
    watchEnd();
    const OwnTime::Span before = ownTime->taken();
    const auto isLate = [&] { return ownTime->taken() - before > longest; };
    return waitUntil([&] { return hasEnded() || isLate(); }) && isLate()
               ? failed("the program does not end within 3 s of its own time")
               : waitForExit(code);
}
