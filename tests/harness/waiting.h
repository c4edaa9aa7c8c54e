#pragma once

#include "tests/support/limits.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QThread>

#include <chrono>

/// The pause between two looks. Looking costs processor time: TALVEX_TEST_PAUSE_MS sets a longer pause for
/// emulated processors.
[[nodiscard]] inline std::chrono::milliseconds pauseBetweenLooks()
{
    static const int wanted = qEnvironmentVariableIntValue("TALVEX_TEST_PAUSE_MS");
    return std::chrono::milliseconds(wanted > 0 ? wanted : 4);
}

/// Processes pending events and lets other processes run.
inline void letOthersRun()
{
    QCoreApplication::processEvents();
    QThread::msleep(static_cast<unsigned long>(pauseBetweenLooks().count()));
}

/// Checks the condition repeatedly, processing events in between, until it holds. Returns false if it still
/// does not hold after limits::hang().
template<typename Condition> [[nodiscard]] bool waitUntil(Condition condition)
{
    const QDeadlineTimer limit(limits::hang());
    while (!condition()) {
        if (limit.hasExpired())
            return false;
        letOthersRun();
    }
    return true;
}
