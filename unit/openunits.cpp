#include "unit/openunits.h"

#include <algorithm>
#include <utility>

void OpenUnits::add(hid_device* unit)
{
    const std::lock_guard locker(lock);
    units.push_back(unit);
}

bool OpenUnits::remove(hid_device* unit)
{
    const std::lock_guard locker(lock);
    const auto found = std::find(units.begin(), units.end(), unit);
    if (found == units.end())
        return false;
    units.erase(found);
    return true;
}

bool OpenUnits::isBusy() const
{
    return (calls.load() & limitedCalls) != 0;
}

bool OpenUnits::closeAll(std::chrono::milliseconds limit, const std::function<void(hid_device*)>& close)
{
    std::unique_lock locker(lock);
    calls |= ending;
    if (!callEnded.wait_for(locker, limit, [this] { return !isBusy(); }) || calls != ending)
        return false;
    for (hid_device* unit : std::exchange(units, {}))
        close(unit); // under the lock: another thread that ends the process waits
    return true;
}

bool OpenUnits::enter(Call call)
{
    std::uint32_t before = calls;
    while ((before & ending) == 0)
        if (calls.compare_exchange_weak(before, before + one(call)))
            return true;
    return false;
}

void OpenUnits::leave(Call call)
{
    if (((calls -= one(call)) & ending) == 0)
        return;
    const std::lock_guard locker(lock); // or the waiting one might just be about to wait
    callEnded.notify_all();
}
