#pragma once

/// A terminal as a window on the screen makes one: what is typed and shown goes through this end.
class Terminal
{
public:
    Terminal();
    ~Terminal();
    Terminal(const Terminal&) = delete;
    Terminal& operator=(const Terminal&) = delete;

    /// The descriptor of the programs' end; -1: the system has no terminal left.
    [[nodiscard]] int programsEnd() const { return other; }

    /// The window is closed: the system tells the programs that their terminal is gone.
    void close();

private:
    int own = -1;
    int other = -1;
};
