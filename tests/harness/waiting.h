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
    constexpr unsigned long pauseMs = 4;
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
