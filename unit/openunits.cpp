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
    const std::lock_guard locker(lock);
    return limitedCalls > 0;
}

bool OpenUnits::closeAll(std::chrono::milliseconds limit, const std::function<void(hid_device*)>& close)
{
    std::unique_lock locker(lock);
    refusing = true;
    const bool calm = callEnded.wait_for(locker, limit, [this] { return limitedCalls == 0; });
    if (!calm || endlessCalls > 0)
        return false;
    for (hid_device* unit : std::exchange(units, {}))
        close(unit); // under the lock: another thread that ends the process waits
    return true;
}

bool OpenUnits::enter(Call call)
{
    const std::lock_guard locker(lock);
    if (refusing)
        return false;
    ++(call == Call::limited ? limitedCalls : endlessCalls);
    return true;
}

void OpenUnits::leave(Call call)
{
    const std::lock_guard locker(lock);
    --(call == Call::limited ? limitedCalls : endlessCalls);
    callEnded.notify_all();
}
