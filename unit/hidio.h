#pragma once

#include "unit/hidhandle.h"

#include <chrono>

/// The calls on a unit: the only place that passes handles to the HID library. A deck that did not open has
/// no handle; every call on it fails like a call on an unplugged unit, and the HID library never sees a null
/// handle. Once the program is ending, every write fails in the same way. Any thread.
namespace hidio {

/// Result of a write or read that failed (hidapi.h).
inline constexpr int failed = -1;

/// Opens the unit at the path of an enumeration's record; nullptr if that fails.
[[nodiscard]] hid_device* open(const char* path);

/// Closes a unit returned by open(); does nothing if it is already closed.
void close(hid_device* device);

/// Asks the unit for its serial number. Intentional: nothing uses it, but being asked may be what makes a
/// unit send its first report.
void askForSerialNumber(hid_device* device);

/// Writes the 65 bytes at `report` (report ID included). Returns the bytes written, or -1.
/// May block while the unit accepts no data (up to 1 s per call in the libusb flavour, 5 s in hidraw).
int write(hid_device* device, const unsigned char* report);

/// Reads one report into the 64 bytes at `report`, waiting at most `milliseconds`.
/// Returns the bytes read, 0 for a time-out, or -1.
int read(hid_device* device, unsigned char* report, int milliseconds);

/// Reads one report into the 64 bytes at `report`, waiting indefinitely. Returns as above.
int readBlocking(hid_device* device, unsigned char* report);

/// Whether a call other than readBlocking() is in progress, that is, one that ends by itself.
[[nodiscard]] bool isBusy();

/// Makes every further write fail, so that none can block the program's end.
void refuseWrites();

/// Refuses further calls, waits up to `limit` for those that end by themselves, and closes all units. Closes
/// none while a call is in progress, as it may be using the handle.
void closeAll(std::chrono::milliseconds limit);

} // namespace hidio
