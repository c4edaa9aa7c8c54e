#pragma once

#include "tests/harness/program.h"

/// Attempts at an end that the program itself limits by the clock: 2.5 s in all, and 0.4 s for a unit that is
/// given back at that limit. A machine that holds the program up for so long spoils an attempt. That, and
/// nothing else, is a reason for another one:
///
///     for (Attempts attempts; attempts.wantsAnother();)
///         ...
///         MUST(program.waitForPromptExit(0)); // crashes and exit codes do not depend on the machine
///         MUST(attempts.judge(program, outcome));
class Attempts
{
public:
    [[nodiscard]] bool wantsAnother() const { return !isOver; }

    /// The outcome to go by: a failure if the program's end was not held up, or if no attempt is left.
    Outcome judge(const Program& program, const Outcome& outcome)
    {
        isOver = outcome.good() || program.heldUp() < spoiling || ++failed == most;
        if (isOver)
            return outcome;
        const auto heldUp = std::chrono::duration_cast<std::chrono::milliseconds>(program.heldUp());
        qInfo("attempt %d, held up for %d ms: %s", failed, static_cast<int>(heldUp.count()),
              qPrintable(outcome.problem()));
        return {};
    }

private:
    static constexpr std::chrono::milliseconds spoiling{200}; ///< half of the shortest limit
    static constexpr int most = 4;
    int failed = 0;
    bool isOver = false;
};
