#pragma once

#include "virtualunit/hidapi/virtualbus.h"

#include <hidapi.h>

#include <chrono>
#include <condition_variable>
#include <deque>
#include <fstream>
#include <mutex>
#include <set>

namespace virtualbus {

/// A device on the bus.
struct Slot
{
    int number = 0;
    DeviceRecord record;
    std::shared_ptr<Device> device; ///< nothing: the bus was cleared while a handle was open
    bool isOpen = false;
    bool unplugged = false;
    bool failsOpens = false;
    bool failsReads = false;
    int failingWrites = 0;

    [[nodiscard]] bool isPresent() const { return device && !unplugged && device->isPluggedIn(); }
    [[nodiscard]] std::string path() const { return "virtual:" + std::to_string(number); }
};

} // namespace virtualbus

/// A handle. It is never freed, so that using one after closing it can be reported.
struct hid_device_
{
    int number = 0;
    bool isOpen = true;
    std::shared_ptr<virtualbus::Slot> slot; ///< never null
    hid_device_info* info = nullptr;        ///< owned; freed by hid_close
    bool nonblocking = false;
    std::deque<std::vector<std::uint8_t>> queue; ///< input reports not yet read, oldest first
};

namespace virtualbus {

/// State behind both faces of the library. Everything is guarded by `mutex`; there is no thread of its own:
/// each call brings the devices up to date, and a reader without a report waits for the next event.
class Bus
{
public:
    /// The one bus. Never destroyed: a thread may still be blocked in a read when the process ends.
    static Bus& instance();

    int attach(const DeviceRecord& record, std::shared_ptr<Device> device);
    void clear();
    [[nodiscard]] std::shared_ptr<Slot> findSlot(int number) const;
    [[nodiscard]] std::shared_ptr<Slot> findSlot(const std::string& path) const;

    /// The handle; one that is null, unknown or closed is the caller's bug and ends the process with a
    /// message.
    hid_device& checked(const char* function, hid_device* handle) const;

    [[nodiscard]] hid_device_info* enumerate(std::uint16_t vendor, std::uint16_t product);
    void freeEnumeration(hid_device_info* list);
    hid_device* open(const std::string& path);
    void close(hid_device& handle);

    /// All with `lock` held on `mutex`; it is given up while waiting. Results are those of hidapi.
    /// @{
    int read(std::unique_lock<std::mutex>& lock, hid_device& handle, std::span<std::uint8_t> buffer,
             int timeoutMs);
    int write(std::unique_lock<std::mutex>& lock, hid_device& handle, std::span<const std::uint8_t> bytes);
    /// @}

    /// Moves the reports that are due into the handle's queue.
    void collect(hid_device& handle);

    void record(Call call);

    std::mutex mutex;
    std::condition_variable changed; ///< something that a waiting reader or writer should look at
    std::vector<std::shared_ptr<Slot>> attached;
    std::vector<std::unique_ptr<hid_device>> handles; ///< every one ever opened
    std::set<hid_device_info*> lists;                 ///< enumerations given out since clear()
    std::set<hid_device_info*> oldLists;              ///< the same, before clear()
    std::vector<Call> calls;

private:
    Bus();
    void waitUntil(std::unique_lock<std::mutex>& lock, std::chrono::steady_clock::time_point when);
    void attachFromEnvironment(const char* units);

    bool keepsCalls = true;
    std::ofstream trace;
    int handlesOpened = 0; ///< since clear()
};

} // namespace virtualbus
