// Runs of the program that a seed draws: unit, server, disk, user and what goes wrong with each.
//
//   tst_random                        the runs of the test, on several processes
//   tst_random --from 5000 --runs 20000 [--jobs 24]
//   tst_random --seed 4711            one run, with all there is to say about it; also by TALVEX_SEED=4711

#include "tests/random/shift.h"

#include <cstdlib>
#include <cstring>
#include <string>

namespace {

constexpr std::uint64_t usualRuns = 600; ///< enough for the least shares of the outcomes
constexpr int usualJobs = 24;            // a run waits more than it computes

/// The number behind an option, or `otherwise`.
std::uint64_t option(int argc, char** argv, const char* name, std::uint64_t otherwise)
{
    for (int i = 1; i + 1 < argc; ++i)
        if (std::strcmp(argv[i], name) == 0)
            return std::strtoull(argv[i + 1], nullptr, 10);
    return otherwise;
}

} // namespace

int main(int argc, char** argv)
{
    const char* const fromEnvironment = std::getenv("TALVEX_SEED");
    const std::uint64_t seed = option(
        argc, argv, "--seed", fromEnvironment != nullptr ? std::strtoull(fromEnvironment, nullptr, 10) : 0);
    if (seed != 0)
        return shift::showRun(seed);
    shift::Seeds seeds;
    seeds.first = option(argc, argv, "--from", 1);
    seeds.count = option(argc, argv, "--runs", usualRuns);
    const auto jobs = static_cast<int>(option(argc, argv, "--jobs", usualJobs));
    const auto step = option(argc, argv, "--worker-step", 0);
    if (step == 0)
        return shift::direct(argv[0], seeds, jobs);
    seeds.step = step;
    return shift::work(seeds);
}
