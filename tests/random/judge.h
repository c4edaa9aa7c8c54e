#pragma once

#include "tests/random/run.h"

/// Everything that is wrong with this ending; empty if the run was good.
[[nodiscard]] QStringList violations(const Plan& plan, const Ending& ending);

/// The run's outcome for the summary: "finished", "log complete", "network problem", ...
[[nodiscard]] QString outcomeOf(const Ending& ending);
