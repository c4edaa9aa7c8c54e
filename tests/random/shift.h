#pragma once

#include <cstdint>

/// Who does the runs: a process starts workers, each in a directory of its own, and each worker forks once
/// for every run. A run that crashes or hangs so takes nothing else with it, and none inherits another's
/// state.
namespace shift {

struct Seeds
{
    std::uint64_t first = 1;
    std::uint64_t count = 0; ///< of the runs, whatever the step is
    std::uint64_t step = 1;
};

/// One run with everything said about it, for the eye. Returns the exit code.
int showRun(std::uint64_t seed);

/// All runs on `jobs` workers, then the summary. `program`: this executable's path. Returns the exit code.
int direct(const char* program, const Seeds& seeds, int jobs);

/// A worker's runs, one line each to stdout: "seed outcome", or "seed FAILED what; what". Returns 0.
int work(const Seeds& seeds);

} // namespace shift
