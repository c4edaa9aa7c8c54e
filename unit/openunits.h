#pragma once

#include "unit/hidhandle.h"

#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <vector>

/// The units that are open, and the calls under way on them: when the program ends, none is
/// closed while a thread is using it. Any thread.
class OpenUnits
{
public:
    /// A call ends by itself (a write, a read with a limit), or perhaps never (a read without one).
    enum class Call { limited, endless };

    /// Makes a call on a unit and returns its result, or `refused`, without the call, once the end has begun.
    template<typename Action, typename Result>
    [[nodiscard]] Result during(Call call, Result refused, Action action)
    {
        if (!enter(call))
            return refused;
        const Result result = action();
        leave(call);
        return result;
    }

    /// Notes a unit that was opened during a call.
    void add(hid_device* unit);
    /// Forgets it. False: it is not open.
    bool remove(hid_device* unit);

    /// Whether a call is under way that ends by itself.
    [[nodiscard]] bool isBusy() const;

    /// Refuses further calls, waits up to `limit` for those that end by themselves, and closes all units with
    /// `close`, each once in all. False: a call is still under way, and none was closed.
    bool closeAll(std::chrono::milliseconds limit, const std::function<void(hid_device*)>& close);

private:
    [[nodiscard]] bool enter(Call call);
    void leave(Call call);

    mutable std::mutex lock; ///< of all that follows
    std::condition_variable callEnded;
    std::vector<hid_device*> units;
    int limitedCalls = 0;
    int endlessCalls = 0;
    bool refusing = false;
};
