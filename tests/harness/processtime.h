#pragma once

#include <QtGlobal>

#include <chrono>

/// How a process on this computer spends its time.

/// Whether all threads of the process are waiting for something: none is running, or is held up only by a
/// busy processor or disk. False if the process has ended.
[[nodiscard]] bool isAsleep(qint64 process);

/// The processor time that the process has used so far; 0 if it has ended.
[[nodiscard]] std::chrono::milliseconds processorTime(qint64 process);

/// The time that the process's present threads have waited for a processor so far, taken together; 0 if it
/// has ended, or if the system does not tell.
[[nodiscard]] std::chrono::nanoseconds timeInQueue(qint64 process);
