#pragma once

#include "tests/support/limits.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QThread>

#include <chrono>

/// The pause between two looks. Asking takes the processor's time: TALVEX_TEST_PAUSE_MS asks for a longer one
/// where that is an emulated one.
[[nodiscard]] inline std::chrono::milliseconds pauseBetweenLooks()
{
    static const int wanted = qEnvironmentVariableIntValue("TALVEX_TEST_PAUSE_MS");
    return std::chrono::milliseconds(wanted > 0 ? wanted : 4);
}

/// Serves the event loop and lets others run.
inline void letOthersRun()
{
    QCoreApplication::processEvents();
    QThread::msleep(static_cast<unsigned long>(pauseBetweenLooks().count()));
}

/// Asks again and again, with the event loop served in between, until the condition holds. Returns whether it
/// did: it gives up where everything hangs.
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
