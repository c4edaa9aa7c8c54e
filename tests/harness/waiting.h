#pragma once

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QThread>

#include <chrono>

/// Asks again and again, with the event loop served in between, until the condition holds or the limit is
/// over. Returns whether it held.
template<typename Condition>
[[nodiscard]] bool waitUntil(Condition condition, std::chrono::milliseconds limit)
{
    // Asking takes the processor's time: where it is an emulated one there are to be longer pauses.
    static const int wanted = qEnvironmentVariableIntValue("TALVEX_TEST_PAUSE_MS");
    const unsigned long pauseMs = wanted > 0 ? static_cast<unsigned long>(wanted) : 4;
    QElapsedTimer passed;
    passed.start();
    while (!condition()) {
        if (passed.hasExpired(limit.count()))
            return false;
        QCoreApplication::processEvents();
        QThread::msleep(pauseMs);
    }
    return true;
}
