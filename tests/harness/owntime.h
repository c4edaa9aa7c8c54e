#pragma once

#include "tests/harness/desktop.h"

#include <chrono>

/// Watches a process on this computer, and separates the time that it takes itself, by working or by waiting
/// for something of its own choice, from the time for which a busy machine holds it up.
class OwnTime
{
public:
    using Span = std::chrono::nanoseconds;

    /// Watches from now on. The desktop must outlive this. Time for which the desktop's own processes are
    /// held up is not the watched process's own either.
    OwnTime(qint64 process, const Desktop& desktop);

    /// Call it every few milliseconds (pauseBetweenLooks()): what happens between two looks is derived from
    /// them.
    void look();

    /// From the beginning to the latest look.
    [[nodiscard]] Span taken() const { return own; }
    [[nodiscard]] Span heldUp() const { return before.at - began - own; }

private:
    struct Sight
    {
        std::chrono::steady_clock::time_point at;
        bool resting; ///< the process and the desktop: neither runs, nor waits for a processor
        Span queued;  ///< for a processor, both of them
        Span worked;  ///< the process
    };

    [[nodiscard]] Sight see() const;

    qint64 process;
    const Desktop& desktop;
    Sight before;
    std::chrono::steady_clock::time_point began;
    Span own{0};
};
