#pragma once

#include "virtualunit/gadget/filedescriptor.h"
#include "virtualunit/hidapi/device.h"
#include "virtualunit/wire.h"

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

/// A USB device with one HID interface (64-byte unnumbered input and output reports), made with the kernel's
/// configfs. It is on the bus from its construction until unplug() or its destruction, which removes all that
/// it created.
class UsbDevice
{
public:
    /// Creates the device under `name` (unique on this system) and plugs it into the device controller
    /// `port`. Throws std::runtime_error with a message for the user, leaving nothing behind.
    UsbDevice(const std::string& name, const virtualbus::DeviceRecord& record, const std::string& port);
    ~UsbDevice();
    UsbDevice(const UsbDevice&) = delete;
    UsbDevice& operator=(const UsbDevice&) = delete;

    /// The host's next output report, preceded by the report ID 0 as virtual units expect it; empty: none has
    /// arrived. The kernel keeps four unread ones; with more, the bus makes the host wait.
    [[nodiscard]] std::vector<std::uint8_t> readReport();

    /// Puts an input report where the host will fetch it. False: the host has not configured the device
    /// (yet), or the report before it has not been fetched.
    [[nodiscard]] bool offerReport(const virtualunit::Report& report);

    /// Leaves the bus for good: the host sees a disconnect.
    void unplug();

    /// To poll: readable when an output report has arrived, writable when no input report waits to be
    /// fetched. -1 after unplug().
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
