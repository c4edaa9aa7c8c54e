#pragma once

/// Takes the clocks over a window of things that happen one after the other. Not thread-safe.
class Meter
{
public:
    /// Skips the first `warmUp` things, then measures `things`.
    Meter(int warmUp, int things) : skipped(warmUp), measured(things) {}

    /// One more has happened. True once: the window is over.
    bool count();

    /// Prints "rate=R cpu=C peak=P": things a second, µs of processor time of the whole process a thing, and
    /// the process's peak resident size in kB. Returns the exit code, 1 if the window is not over.
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
