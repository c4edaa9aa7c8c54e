#pragma once

#include "vendor/options.h"

/// Each does what the options ask for, prints the result and returns the exit code. Needs a QCoreApplication.
namespace commands {

[[nodiscard]] int check(const options::Check& wanted);
[[nodiscard]] int hash(const options::Hash& wanted);

} // namespace commands
