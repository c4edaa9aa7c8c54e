#include "bench/meter.h"

#include <cstdio>
#include <ctime>
#include <fstream>
#include <string>

namespace {

double secondsOf(clockid_t clock)
{
    timespec time{};
    clock_gettime(clock, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

/// VmHWM, kB; 0 where the system does not tell.
long peakResidentSize()
{
    std::ifstream status("/proc/self/status");
    std::string word;
    long size = 0;
    while (status >> word)
        if (word == "VmHWM:" && status >> size)
            return size;
    return 0;
}

} // namespace

Meter::Clocks Meter::read()
{
    return {secondsOf(CLOCK_MONOTONIC), secondsOf(CLOCK_PROCESS_CPUTIME_ID)};
}

bool Meter::count()
{
    ++happened;
    if (happened == skipped)
        first = read();
    if (happened != skipped + measured)
        return false;
    last = read();
    return true;
}

int Meter::print() const
{
    if (happened < skipped + measured) {
        std::fprintf(stderr, "only %d of %d\n", happened, skipped + measured);
        return 1;
    }
    std::printf("rate=%.2f cpu=%.3f peak=%ld\n", measured / (last.wall - first.wall),
                (last.processor - first.processor) * 1e6 / measured, peakResidentSize());
    return 0;
}
