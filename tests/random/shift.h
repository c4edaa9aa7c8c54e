#pragma once

#include <cstdint>

/// Distributes the runs: one process starts the workers, each in its own directory, and each worker forks
/// once per run. A run that crashes or hangs therefore affects nothing else, and no run inherits another's
/// state.
namespace shift {

struct Seeds
{
    std::uint64_t first = 1;
    std::uint64_t count = 0; ///< number of runs, whatever the step
    std::uint64_t step = 1;
};

/// Does one run and prints everything about it, for a human reader. Returns the exit code.
int showRun(std::uint64_t seed);

/// Does all runs on `jobs` workers, then prints the summary. `program` is this executable's path. Returns
/// the exit code.
int direct(const char* program, const Seeds& seeds, int jobs);

/// Does one worker's runs and prints one line for each to stdout: "seed outcome", or "seed FAILED what;
/// what". Returns 0.
int work(const Seeds& seeds);

} // namespace shift
