#pragma once

#include "unit/hidhandle.h"

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <functional>
#include <mutex>
#include <vector>

/// The open units and the calls in progress on them, so that no unit is closed while a thread is using it
/// when the program ends. Any thread.
class OpenUnits
{
public:
    /// A call that ends by itself (a write, a read with a time limit), or one that may never end (without
    /// limit).
    enum class Call { limited, endless };

    /// Makes a call on a unit and returns its result; once the end has begun, only returns `refused`.
    template<typename Action, typename Result>
    [[nodiscard]] Result during(Call call, Result refused, Action action)
    {
        if (!enter(call))
            return refused;
        const Result result = action();
        leave(call);
        return result;
    }

    /// Adds a unit that was opened during a call.
    void add(hid_device* unit);
    /// Removes it. False: it is not open.
    bool remove(hid_device* unit);

    /// Whether a call that ends by itself is in progress.
    [[nodiscard]] bool isBusy() const;

    /// Refuses further calls, waits up to `limit` for those that end by themselves, and closes every unit
    /// with `close`, exactly once. False: a call is still in progress, and none was closed.
    bool closeAll(std::chrono::milliseconds limit, const std::function<void(hid_device*)>& close);

private:
    [[nodiscard]] bool enter(Call call);
    void leave(Call call);

    // All counts share one word, so that a call takes no lock: there are a thousand of them a second.
    static constexpr std::uint32_t limitedCalls = 0xFFFF;
    static constexpr std::uint32_t ending = 0x8000'0000; ///< the end has begun
    static constexpr std::uint32_t one(Call call) { return call == Call::limited ? 1 : limitedCalls + 1; }

    std::atomic<std::uint32_t> calls = 0; ///< in progress, the limited ones in the low half
    std::mutex lock;                      ///< of `units`
    std::condition_variable callEnded;    ///< once the end has begun
    std::vector<hid_device*> units;
};
