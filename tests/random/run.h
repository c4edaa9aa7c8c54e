#pragma once

#include "tests/random/observed.h"
#include "tests/random/plan.h"
#include "tests/support/imagefiles.h"
#include "virtualunit/hidapi/virtualbus.h"

/// What a run leaves behind once the program has ended, and what was observed before that.
struct Ending
{
    QStringList boxes; ///< as Boxes::lines()
    QStringList wrong; ///< violations that the user saw
    Observed last;
    bool endedByUser = false;
    int exitCode = 0;
    std::vector<virtualbus::UnitView> units;
    int openHandles = 0;
    int enumerationsNotFreed = 0;
    QStringList asked; ///< the requested paths, one per request
    ImageFiles before;
    ImageFiles after;
    QList<QByteArray> logs; ///< contents of the log files in the program's directory
};

/// Runs the program once in this process. A process can do only one run, because some state lasts for its
/// lifetime. Files are placed in the executable's directory. `verbose` prints diagnostics and boxes to
/// stderr.
[[nodiscard]] Ending runOnce(const Plan& plan, bool verbose);
