#pragma once

#include <QtGlobal>

#include <chrono>

/// What a process of this computer does with its time.

/// Whether all its threads wait for something: none works, or could if the processor or the disk were free.
/// False of a process that has ended.
[[nodiscard]] bool isAsleep(qint64 process);

/// The processor's time that it took until now; 0 of a process that has ended.
[[nodiscard]] std::chrono::milliseconds processorTime(qint64 process);
