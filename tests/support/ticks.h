#pragma once

#include <QCoreApplication>
#include <QTimer>

#include <functional>

/// Runs the event loop until a timer of 1 ms has fired `count` times, or `enough` holds. Whatever else was
/// due in it, such as queued calls and the program's own timer of 1 ms, has had as many turns, however long
/// they took.
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
