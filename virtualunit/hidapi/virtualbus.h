#pragma once

#include "virtualunit/hidapi/call.h"
#include "virtualunit/hidapi/device.h"

#include <functional>
#include <memory>

/// The bus behind the virtual HID library, for tests in the same process. All functions are thread-safe.
/// The first use of the library, by a hidapi call or a function here, attaches the units that the environment
/// variable TALVEX_VIRTUAL_UNITS names; without it the bus is empty and calls are recorded.
namespace virtualbus {

/// Plugs a virtual unit in. Returns its number, from 1; enumerations list the one plugged in last first.
int attach(const virtualunit::Options& options);

/// Plugs any device in; the bus shares it until clear().
int attach(const DeviceRecord& record, std::shared_ptr<Device> device);

/// Pulls the plug of a device: queued reports can still be read, then reads give -1.
void unplug(int device);

/// Back to an empty bus: every device is gone, every handle is as after unplugging (it may still be closed),
/// the records and counts start from nothing, handles and devices are numbered from 1 again.
void clear();

/// Runs `change` under the bus's lock and wakes every waiting reader: for a test that feeds its own Device.
void change(const std::function<void()>& change);

/// A copy of what a virtual unit knows. All empty for a number that is no virtual unit's.
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

/// The bytes of each hid_write on a handle, failed ones too.
[[nodiscard]] std::vector<std::vector<std::uint8_t>> writesTo(int handle);

/// Handles that were opened and not closed.
[[nodiscard]] int openHandles();

/// Lists that hid_enumerate gave out and hid_free_enumeration did not get back.
[[nodiscard]] int enumerationsNotFreed();

/// Failures on top of the device's own. They end with clear() or when set back.
/// @{
void failOpens(int device, bool fail);
void failNextWrites(int device, int count);
void failReads(int device, bool fail); ///< every read gives -1, also one that is waiting
/// @}

} // namespace virtualbus
