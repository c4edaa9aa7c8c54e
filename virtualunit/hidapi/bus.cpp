#include "virtualunit/hidapi/bus.h"

#include "virtualunit/hidapi/inforecord.h"
#include "virtualunit/hidapi/unitdevice.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <iterator>

namespace virtualbus {
namespace {

using Clock = std::chrono::steady_clock;

/// Input reports kept for a host that does not read. hidapi's own remark says 30; this is what it comes to.
constexpr std::size_t queueSize = 32;

Milliseconds nowMs()
{
    return std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now().time_since_epoch()).count();
}

constexpr Clock::time_point endOfTime = Clock::time_point::max();

Clock::time_point timeOf(Milliseconds ms)
{
    return ms == never ? endOfTime : Clock::time_point(std::chrono::milliseconds(ms));
}

[[noreturn]] void refuseCaller(const char* function, const char* what)
{
    std::fprintf(stderr, "talvex-virtual-hid: %s called with a %s\n", function, what);
    std::abort();
}

} // namespace

Bus& Bus::instance()
{
    static Bus* const bus = new Bus; // owned by the process: see the declaration
    return *bus;
}

Bus::Bus()
{
    if (const char* path = std::getenv("TALVEX_VIRTUAL_HID_TRACE"))
        trace.open(path, std::ios::app | std::ios::binary);
    if (const char* units = std::getenv("TALVEX_VIRTUAL_UNITS")) {
        keepsCalls = false; // a whole program runs long, and nobody could ask
        attachFromEnvironment(units);
    }
}

void Bus::attachFromEnvironment(const char* units)
{
    const virtualunit::ParsedOptions parsed = virtualunit::parseOptions(units);
    if (!parsed.error.empty())
        std::fprintf(stderr, "talvex-virtual-hid: TALVEX_VIRTUAL_UNITS: %s\n", parsed.error.c_str());
    for (const virtualunit::Options& options : parsed.units)
        attach(recordOf(options), std::make_shared<UnitDevice>(options));
}

int Bus::attach(const DeviceRecord& record, std::shared_ptr<Device> device)
{
    auto slot = std::make_shared<Slot>();
    slot->number = static_cast<int>(attached.size()) + 1;
    slot->record = record;
    slot->device = std::move(device);
    attached.push_back(slot);
    return slot->number;
}

void Bus::clear()
{
    for (const auto& handle : handles)
        handle->slot = std::make_shared<Slot>();
    oldLists.merge(lists);
    lists.clear();
    attached.clear();
    calls.clear();
    handlesOpened = 0;
    changed.notify_all();
}

std::shared_ptr<Slot> Bus::findSlot(int number) const
{
    const auto found =
        std::find_if(attached.begin(), attached.end(), [=](const auto& s) { return s->number == number; });
    return found == attached.end() ? nullptr : *found;
}

std::shared_ptr<Slot> Bus::findSlot(const std::string& path) const
{
    const auto found =
        std::find_if(attached.begin(), attached.end(), [&](const auto& s) { return s->path() == path; });
    return found == attached.end() ? nullptr : *found;
}

hid_device& Bus::checked(const char* function, hid_device* handle) const
{
    if (handle == nullptr)
        refuseCaller(function, "null handle");
    const bool known =
        std::any_of(handles.begin(), handles.end(), [=](const auto& h) { return h.get() == handle; });
    if (!known)
        refuseCaller(function, "foreign handle");
    if (!handle->isOpen)
        refuseCaller(function, "closed handle");
    return *handle;
}

hid_device_info* Bus::enumerate(std::uint16_t vendor, std::uint16_t product)
{
    hid_device_info* first = nullptr;
    hid_device_info** end = &first;
    for (auto slot = attached.rbegin(); slot != attached.rend(); ++slot) { // as libusb lists them
        const DeviceRecord& record = (*slot)->record;
        const bool matches =
            (vendor == 0 || vendor == record.vendorId) && (product == 0 || product == record.productId);
        if (!matches || !(*slot)->isPresent())
            continue;
        *end = makeInfo(**slot);
        end = &(*end)->next;
    }
    if (first != nullptr)
        lists.insert(first);
    return first;
}

void Bus::freeEnumeration(hid_device_info* list)
{
    if (list != nullptr && lists.erase(list) + oldLists.erase(list) == 0)
        refuseCaller("hid_free_enumeration", "foreign list"); // freed before, or not from here
    freeInfo(list);
}

hid_device* Bus::open(const std::string& path)
{
    const std::shared_ptr<Slot> slot = findSlot(path);
    if (!slot || slot->isOpen || slot->failsOpens || !slot->isPresent() || !slot->device->open(nowMs()))
        return nullptr;
    slot->isOpen = true;
    auto& handle = handles.emplace_back(std::make_unique<hid_device>());
    handle->number = ++handlesOpened;
    handle->slot = slot;
    return handle.get();
}

void Bus::close(hid_device& handle)
{
    if (handle.slot->device)
        handle.slot->device->close(nowMs());
    handle.slot->isOpen = false;
    handle.isOpen = false;
    handle.queue.clear();
    freeInfo(std::exchange(handle.info, nullptr));
    changed.notify_all();
}

void Bus::collect(hid_device& handle)
{
    if (!handle.isOpen || !handle.slot->device || handle.slot->unplugged)
        return;
    while (auto report = handle.slot->device->takeInput(nowMs())) {
        handle.queue.push_back(std::move(*report));
        if (handle.queue.size() > queueSize)
            handle.queue.pop_front();
    }
    while (auto report = handle.slot->device->takeFlood(handle.queue.size()))
        handle.queue.push_back(std::move(*report));
}

int Bus::read(std::unique_lock<std::mutex>& lock, hid_device& handle, std::span<std::uint8_t> buffer,
              int timeoutMs)
{
    const auto deadline = timeoutMs < 0 ? endOfTime : Clock::now() + std::chrono::milliseconds(timeoutMs);
    for (;;) {
        collect(handle);
        if (handle.slot->failsReads || !handle.isOpen)
            return -1;
        if (!handle.queue.empty()) {
            const std::vector<std::uint8_t> report = std::move(handle.queue.front());
            handle.queue.pop_front();
            const std::size_t size = std::min(buffer.size(), report.size());
            std::copy_n(report.begin(), size, buffer.begin());
            return static_cast<int>(size);
        }
        if (!handle.slot->isPresent())
            return -1;
        if (deadline <= Clock::now())
            return 0;
        waitUntil(lock, std::min(deadline, timeOf(handle.slot->device->nextEventAt())));
    }
}

void Bus::waitUntil(std::unique_lock<std::mutex>& lock, std::chrono::steady_clock::time_point when)
{
    if (when == endOfTime)
        changed.wait(lock);
    else
        changed.wait_until(lock, when);
}

int Bus::write(std::unique_lock<std::mutex>& lock, hid_device& handle, std::span<const std::uint8_t> bytes)
{
    const auto isGone = [&] { return !handle.isOpen || !handle.slot->isPresent(); };
    if (isGone())
        return -1;
    if (handle.slot->failingWrites > 0) {
        --handle.slot->failingWrites;
        return -1;
    }
    const auto receipt = handle.slot->device->write(bytes, nowMs());
    changed.notify_all();
    if (receipt.taken)
        return static_cast<int>(bytes.size());
    changed.wait_for(lock, std::chrono::milliseconds(receipt.blockedMs), isGone);
    return -1;
}

void Bus::record(Call call)
{
    if (trace.is_open())
        trace << (lineOf(call) + '\n') << std::flush;
    if (keepsCalls)
        calls.push_back(std::move(call));
}

} // namespace virtualbus
