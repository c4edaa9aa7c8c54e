#pragma once

#include "tests/random/observed.h"
#include "tests/random/plan.h"
#include "tests/support/imagefiles.h"
#include "virtualunit/hidapi/virtualbus.h"

/// What is left of a run once the program has ended, and what was seen of it before.
struct Ending
{
    QStringList boxes; ///< as Boxes::lines()
    QStringList wrong; ///< what the user saw that must not be
    Observed last;
    bool endedByUser = false;
    int exitCode = 0;
    std::vector<virtualbus::UnitView> units;
    int openHandles = 0;
    int enumerationsNotFreed = 0;
    QStringList asked; ///< the server's paths, one for each request
    ImageFiles before;
    ImageFiles after;
    QList<QByteArray> logs; ///< contents of the log files beside the program
};

/// Runs the program once in this process, which can do no second run: it keeps state for its whole life.
/// Files are put beside the executable. `verbose`: diagnostics and boxes go to stderr.
[[nodiscard]] Ending runOnce(const Plan& plan, bool verbose);
