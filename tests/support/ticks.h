#pragma once

#include <QCoreApplication>
#include <QTimer>

#include <functional>

/// Runs the event loop until a 1 ms timer has fired `count` times or `enough` holds. Everything else in the
/// loop, such as queued calls and the program's own 1 ms timer, has had as many turns, however long they
/// took.
inline void passTicks(
    int count, const std::function<bool()>& enough = [] { return false; })
{
    int ticks = 0;
    QTimer beat;
    QObject::connect(&beat, &QTimer::timeout, [&ticks] { ++ticks; });
    beat.start(1);
    while (ticks < count && !enough())
        QCoreApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents);
}
