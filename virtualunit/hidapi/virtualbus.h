#pragma once

#include "virtualunit/hidapi/call.h"
#include "virtualunit/hidapi/device.h"

#include <functional>
#include <memory>

/// The bus behind the virtual HID library, for tests in the same process. All functions are thread-safe.
/// The first use of the library, by a hidapi call or a function here, attaches the units that the environment
/// variable TALVEX_VIRTUAL_UNITS names; without it the bus is empty and calls are recorded.
namespace virtualbus {

/// Plugs in a virtual unit. Returns its number, from 1; enumerations list the last one plugged in first.
int attach(const virtualunit::Options& options);

/// Plugs in any device; the bus shares its ownership until clear().
int attach(const DeviceRecord& record, std::shared_ptr<Device> device);

/// Unplugs a device: queued reports can still be read, then reads return -1.
void unplug(int device);

/// Empties the bus: every device is gone, every handle is as after unplugging (it may still be closed), the
/// records and counts start afresh, and handles and devices are numbered from 1 again.
void clear();

/// Runs `change` under the bus's lock and wakes every waiting reader: for a test that feeds its own Device.
void change(const std::function<void()>& change);

/// A copy of what a virtual unit knows. All empty if the number is not a virtual unit's.
struct UnitView
{
    std::vector<std::uint8_t> image; ///< received since the last request
    virtualunit::Verdict verdict = virtualunit::Verdict::None;
    std::vector<std::string> journal;
    std::vector<std::string> errors; ///< the journal's lines that begin with "error "
};
[[nodiscard]] UnitView unit(int device);

/// Every hidapi call since the start or clear(), in the order in which they returned.
[[nodiscard]] std::vector<Call> calls();

/// The calls of one function, such as "hid_enumerate".
[[nodiscard]] std::vector<Call> callsOf(const std::string& function);

/// The bytes of each hid_write on a handle, failed ones included.
[[nodiscard]] std::vector<std::vector<std::uint8_t>> writesTo(int handle);

/// Handles opened and not yet closed.
[[nodiscard]] int openHandles();

/// Lists that hid_enumerate gave out and hid_free_enumeration did not get back.
[[nodiscard]] int enumerationsNotFreed();

/// Failures in addition to the device's own. They end with clear() or when switched off.
/// @{
void failOpens(int device, bool fail);
void failNextWrites(int device, int count);
void failReads(int device, bool fail); ///< every read returns -1, including one that is waiting
/// @}

} // namespace virtualbus
