#include "virtualunit/hidapi/virtualbus.h"

#include "virtualunit/hidapi/bus.h"
#include "virtualunit/hidapi/unitdevice.h"

#include <algorithm>
#include <iterator>

namespace virtualbus {
namespace {

/// Runs `action` on the device of that number, if there is one, under the lock; wakes those who wait.
template<typename Action> void onSlot(int device, Action action)
{
    Bus& bus = Bus::instance();
    const std::lock_guard lock(bus.mutex);
    if (const auto slot = bus.findSlot(device))
        action(*slot);
    bus.changed.notify_all();
}

} // namespace

int attach(const virtualunit::Options& options)
{
    return attach(recordOf(options), std::make_shared<UnitDevice>(options));
}

int attach(const DeviceRecord& record, std::shared_ptr<Device> device)
{
    Bus& bus = Bus::instance();
    const std::lock_guard lock(bus.mutex);
    return bus.attach(record, std::move(device));
}

void unplug(int device)
{
    Bus& bus = Bus::instance();
    const std::lock_guard lock(bus.mutex);
    const auto slot = bus.findSlot(device);
    if (!slot)
        return;
    for (const auto& handle : bus.handles)
        if (handle->slot == slot)
            bus.collect(*handle); // what came before stays readable
    slot->unplugged = true;
    if (auto* unit = dynamic_cast<UnitDevice*>(slot->device.get()))
        unit->unit.unplug();
    bus.changed.notify_all();
}

void clear()
{
    Bus& bus = Bus::instance();
    const std::lock_guard lock(bus.mutex);
    bus.clear();
}

void change(const std::function<void()>& change)
{
    Bus& bus = Bus::instance();
    const std::lock_guard lock(bus.mutex);
    change();
    bus.changed.notify_all();
}

UnitView unit(int device)
{
    UnitView view;
    onSlot(device, [&](const Slot& slot) {
        const auto* known = dynamic_cast<const UnitDevice*>(slot.device.get());
        if (known == nullptr)
            return;
        view.image = known->unit.image();
        view.verdict = known->unit.verdict();
        view.journal = known->unit.journalLines();
    });
    std::copy_if(view.journal.begin(), view.journal.end(), std::back_inserter(view.errors),
                 [](const std::string& line) { return line.starts_with("error "); });
    return view;
}

std::vector<Call> calls()
{
    Bus& bus = Bus::instance();
    const std::lock_guard lock(bus.mutex);
    return bus.calls;
}

std::vector<Call> callsOf(const std::string& function)
{
    std::vector<Call> found = calls();
    std::erase_if(found, [&](const Call& call) { return call.function != function; });
    return found;
}

std::vector<std::vector<std::uint8_t>> writesTo(int handle)
{
    std::vector<std::vector<std::uint8_t>> written;
    for (const Call& call : callsOf("hid_write"))
        if (call.handle == handle)
            written.push_back(call.bytes);
    return written;
}

int openHandles()
{
    Bus& bus = Bus::instance();
    const std::lock_guard lock(bus.mutex);
    return static_cast<int>(std::count_if(bus.handles.begin(), bus.handles.end(), [](const auto& handle) {
        return handle->isOpen && handle->slot->device;
    }));
}

int enumerationsNotFreed()
{
    Bus& bus = Bus::instance();
    const std::lock_guard lock(bus.mutex);
    return static_cast<int>(bus.lists.size());
}

void failOpens(int device, bool fail)
{
    onSlot(device, [=](Slot& slot) { slot.failsOpens = fail; });
}

void failNextWrites(int device, int count)
{
    onSlot(device, [=](Slot& slot) { slot.failingWrites = count; });
}

void failReads(int device, bool fail)
{
    onSlot(device, [=](Slot& slot) { slot.failsReads = fail; });
}

} // namespace virtualbus
