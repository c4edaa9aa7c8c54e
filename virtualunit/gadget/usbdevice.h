#pragma once

#include "virtualunit/gadget/filedescriptor.h"
#include "virtualunit/hidapi/device.h"
#include "virtualunit/wire.h"

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

/// A USB device with one HID interface (64-byte unnumbered input and output reports), made of the kernel's
/// configfs. It is on the bus from its construction until unplug() or its end; what it created goes with it.
class UsbDevice
{
public:
    /// Creates the device under `name` (unique on this system) and plugs it into the device controller
    /// `port`. Throws std::runtime_error with a message for the user; nothing is left behind then.
    UsbDevice(const std::string& name, const virtualbus::DeviceRecord& record, const std::string& port);
    ~UsbDevice();
    UsbDevice(const UsbDevice&) = delete;
    UsbDevice& operator=(const UsbDevice&) = delete;

    /// The next output report of the host, the report ID 0 in front as virtual units take it; empty: none has
    /// come. The kernel keeps four that are not read; the bus makes the host wait with more.
    [[nodiscard]] std::vector<std::uint8_t> readReport();

    /// Puts an input report where the host will fetch it. False: the host has not configured the device
    /// (yet), or the report before it has not been fetched.
    [[nodiscard]] bool offerReport(const virtualunit::Report& report);

    /// Off the bus, for good: the host sees a disconnect.
    void unplug();

    /// To poll: readable when an output report has come, writable when no input report waits to be fetched.
    /// -1 after unplug().
    [[nodiscard]] int descriptor() const { return hid.get(); }
    [[nodiscard]] const std::string& node() const { return nodePath; }

private:
    void describe(const virtualbus::DeviceRecord& record);
    void addHidFunction(const std::string& port);
    void plugIn(const std::string& port);
    void remove();

    std::filesystem::path root;
    std::string nodePath;
    FileDescriptor hid;
};

/// The device controllers of this system that serve no device yet, sorted by name.
[[nodiscard]] std::vector<std::string> freePorts();
