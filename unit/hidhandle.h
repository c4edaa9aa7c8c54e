#pragma once

/// The HID library's own types (hidapi.h), for code that only passes them on.
using hid_device = struct hid_device_;
struct hid_device_info;
