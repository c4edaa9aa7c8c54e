#pragma once

#include "tests/random/run.h"

/// Everything about this ending that must not be; empty: the run was good.
[[nodiscard]] QStringList violations(const Plan& plan, const Ending& ending);

/// What became of the run, for the summary: "finished", "log complete", "network problem", ...
[[nodiscard]] QString outcomeOf(const Ending& ending);
