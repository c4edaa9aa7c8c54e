#pragma once

/// Measures wall and processor time over a series of consecutive events. Not thread-safe.
class Meter
{
public:
    /// Skips the first `warmUp` events, then measures the next `things`.
    Meter(int warmUp, int things) : skipped(warmUp), measured(things) {}

    /// Counts one event. Returns true exactly once, when the series is complete.
    bool count();

    /// Prints "rate=R cpu=C peak=P": events per second, µs of the whole process's processor time per event,
    /// and the process's peak resident size in kB. Returns the exit code: 1 if the series is not complete.
    [[nodiscard]] int print() const;

private:
    struct Clocks
    {
        double wall = 0; ///< s
        double processor = 0;
    };
    static Clocks read();

    int skipped;
    int measured;
    int happened = 0;
    Clocks first;
    Clocks last;
};
