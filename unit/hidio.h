#pragma once

#include "unit/report.h"

#include <hidapi.h>

/// Reports to and from an open unit. A deck that did not open has no handle; every call on it fails like a
/// call on an unplugged unit, and the HID library never sees a null handle.
namespace hidio {

/// Result of a write or read that failed (hidapi.h).
inline constexpr int failed = -1;

/// Writes the 65 bytes at `report` (report ID included). Returns the bytes written, or -1.
/// May block for as long as the unit takes nothing (1 s a call in the libusb flavour, 5 s in hidraw).
int write(hid_device* device, const unsigned char* report);

/// Reads one report into the 64 bytes at `report`, waiting at most `milliseconds`.
/// Returns the bytes read, 0 for a time-out, or -1.
int read(hid_device* device, unsigned char* report, int milliseconds);

/// Reads one report into the 64 bytes at `report`, waiting for as long as it takes. Returns as above.
int readBlocking(hid_device* device, unsigned char* report);

} // namespace hidio
