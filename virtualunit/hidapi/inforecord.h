#pragma once

#include "virtualunit/hidapi/bus.h"

namespace virtualbus {

/// A new enumeration record for the device, on the heap, its `next` NULL.
[[nodiscard]] hid_device_info* makeInfo(const Slot& slot);

/// Frees a list of such records and all its strings; NULL is an empty list.
void freeInfo(hid_device_info* list);

} // namespace virtualbus
