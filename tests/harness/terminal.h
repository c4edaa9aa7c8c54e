#pragma once

/// A pseudo-terminal, as a terminal window creates one; this object holds the window's end.
class Terminal
{
public:
    Terminal();
    ~Terminal();
    Terminal(const Terminal&) = delete;
    Terminal& operator=(const Terminal&) = delete;

    /// The descriptor of the programs' end; -1 if no terminal was available.
    [[nodiscard]] int programsEnd() const { return other; }

    /// Closes the window's end: the system tells the programs that their terminal is gone.
    void close();

private:
    int own = -1;
    int other = -1;
};
