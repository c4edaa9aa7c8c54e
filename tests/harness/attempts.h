#pragma once

#include "tests/harness/outcome.h"

#include <QtGlobal>

/// Attempts at an end that the program itself limits by the clock: 2.5 s in all, and 0.4 s for a unit that is
/// given back at that limit. A machine that gives the program or the test no processor for so long spoils an
/// attempt, so one good attempt is enough:
///
///     for (Attempts attempts; attempts.wantsAnother();)
///         ...
///         MUST(attempts.judge(outcome));
class Attempts
{
public:
    [[nodiscard]] bool wantsAnother() const { return !isOver; }

    /// The outcome to go by: a failure only if no attempt is left.
    Outcome judge(const Outcome& outcome)
    {
        isOver = outcome.good() || ++failed == most;
        if (isOver)
            return outcome;
        qInfo("attempt %d: %s", failed, qPrintable(outcome.problem()));
        return {};
    }

private:
    static constexpr int most = 4;
    int failed = 0;
    bool isOver = false;
};
