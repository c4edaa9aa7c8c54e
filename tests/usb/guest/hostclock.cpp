// Prints the rate, in kHz, of the counter that an emulated processor reads as its own time stamp counter. A
// guest that measures it by itself, while others keep the host busy, may get it wrong many times over.

#include <chrono>
#include <cstdint>
#include <cstdio>
#include <thread>
#if defined(__x86_64__)
#include <x86intrin.h>
#endif

namespace {

using Clock = std::chrono::steady_clock;

std::int64_t counter()
{
#if defined(__x86_64__)
    return static_cast<std::int64_t>(__rdtsc());
#else
    return Clock::now().time_since_epoch() / std::chrono::nanoseconds(1); // QEMU's own substitute
#endif
}

struct Moment
{
    Clock::time_point time;
    std::int64_t count;
};

/// Both at once: of several tries the one in which least time passed.
Moment now()
{
    constexpr int tries = 20;
    Moment best{};
    auto shortest = Clock::duration::max();
    for (int i = 0; i < tries; ++i) {
        const auto before = Clock::now();
        const std::int64_t count = counter();
        const auto passed = Clock::now() - before;
        if (passed < shortest) {
            shortest = passed;
            best = {before + passed / 2, count};
        }
    }
    return best;
}

} // namespace

int main()
{
    const Moment first = now();
    std::this_thread::sleep_for(std::chrono::milliseconds(200));
    const Moment second = now();
    const auto passed =
        std::chrono::duration_cast<std::chrono::microseconds>(second.time - first.time).count();
    std::printf("%lld\n", static_cast<long long>((second.count - first.count) * 1000 / passed));
    return 0;
}
