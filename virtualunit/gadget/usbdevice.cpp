#include "virtualunit/gadget/usbdevice.h"

#include <fcntl.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <fstream>
#include <stdexcept>
#include <string_view>

namespace fs = std::filesystem;

namespace {

const fs::path gadgets = "/sys/kernel/config/usb_gadget";
const fs::path controllers = "/sys/class/udc";

/// Vendor-defined reports of 64 bytes each way, without report IDs.
constexpr std::array reportDescriptor = std::to_array<char>({
    0x06,   0x00,   '\xFF',       // usage page: vendor-defined
    0x09,   0x01,                 // usage
    '\xA1', 0x01,                 // collection: application
    0x15,   0x00,                 //   logical minimum 0
    0x26,   '\xFF', 0x00,         //   logical maximum 255
    0x75,   0x08,                 //   8 bits
    '\x95', 0x40,                 //   64 of them
    0x09,   0x01,   '\x81', 0x02, //   input
    0x09,   0x01,   '\x91', 0x02, //   output
    '\xC0',                       // end of collection
});

std::string lineOf(const fs::path& file)
{
    std::ifstream stream(file);
    std::string line;
    std::getline(stream, line);
    return line;
}

/// The longest packet of both endpoints, in bytes. Kernels since the end of 2025 send an empty packet after a
/// report that fills one, and a host that takes packets as they come has an empty report then. So reports are
/// one byte shorter than a packet, save at full speed, whose packets cannot be longer.
std::size_t packetSizeAt(const std::string& port)
{
    const bool isFullSpeed = lineOf(controllers / port / "maximum_speed") == "full-speed";
    return virtualunit::reportSize + (isFullSpeed ? 0 : 1);
}

[[noreturn]] void fail(const std::string& what)
{
    throw std::runtime_error(what + ": " + std::strerror(errno));
}

void put(const fs::path& file, std::string_view content)
{
    std::ofstream stream(file, std::ios::binary);
    if (!stream.write(content.data(), static_cast<std::streamsize>(content.size())).flush())
        fail("cannot write " + file.string());
}

void makeDirectory(const fs::path& directory)
{
    std::error_code error;
    if (!fs::create_directories(directory, error) && error)
        throw std::runtime_error("cannot create " + directory.string() + ": " + error.message());
}

void removeDirectory(const fs::path& directory)
{
    std::error_code ignored; // the half of a device that was never completed
    fs::remove(directory, ignored);
}

} // namespace

UsbDevice::UsbDevice(const std::string& name, const virtualbus::DeviceRecord& record, const std::string& port)
    : root(gadgets / name)
{
    if (!fs::is_directory(gadgets))
        throw std::runtime_error("no " + gadgets.string() + ": load the kernel module libcomposite as root");
    try {
        describe(record);
        addHidFunction(port);
        plugIn(port);
    } catch (const std::runtime_error&) {
        remove();
        throw;
    }
}

UsbDevice::~UsbDevice()
{
    unplug();
    remove();
}

void UsbDevice::describe(const virtualbus::DeviceRecord& record)
{
    makeDirectory(root);
    put(root / "idVendor", std::to_string(record.vendorId));
    put(root / "idProduct", std::to_string(record.productId));
    put(root / "bcdDevice", "0x0100");
    if (!record.product)
        return; // the kernel gives a device all of its strings or none
    const fs::path strings = root / "strings/0x409";
    makeDirectory(strings);
    put(strings / "manufacturer", record.manufacturer.value_or(""));
    put(strings / "product", *record.product);
    put(strings / "serialnumber", record.serial.value_or(""));
}

void UsbDevice::addHidFunction(const std::string& port)
{
    const fs::path function = root / "functions/hid.usb0";
    const fs::path configuration = root / "configs/c.1";
    makeDirectory(function);
    put(function / "report_length", std::to_string(packetSizeAt(port)));
    put(function / "report_desc", {reportDescriptor.data(), reportDescriptor.size()});
    makeDirectory(configuration);
    fs::create_directory_symlink(function, configuration / "hid.usb0");
}

void UsbDevice::plugIn(const std::string& port)
{
    put(root / "UDC", port);
    const std::string numbers = lineOf(root / "functions/hid.usb0/dev"); // "major:minor"
    nodePath = "/dev/hidg" + numbers.substr(numbers.find(':') + 1);
    hid = FileDescriptor(::open(nodePath.c_str(), O_RDWR | O_NONBLOCK | O_CLOEXEC));
    if (!hid.isOpen())
        fail("cannot open " + nodePath);
}

std::vector<std::uint8_t> UsbDevice::readReport()
{
    constexpr std::size_t idSize = 1;
    constexpr std::size_t most = virtualunit::reportSize + 1; // so that too long a one shows
    std::vector<std::uint8_t> report(idSize + most);
    const ssize_t size = ::read(hid.get(), report.data() + idSize, most);
    report.resize(size > 0 ? idSize + static_cast<std::size_t>(size) : 0);
    return report;
}

bool UsbDevice::offerReport(const virtualunit::Report& report)
{
    return ::write(hid.get(), report.data(), report.size()) == static_cast<ssize_t>(report.size());
}

void UsbDevice::unplug()
{
    if (!hid.isOpen())
        return;
    hid.close(); // before the function behind it goes
    std::ofstream(root / "UDC") << '\n';
}

/// Backwards, as configfs wants it. Removes as much as there is.
void UsbDevice::remove()
{
    hid.close();
    std::error_code ignored;
    if (!lineOf(root / "UDC").empty())
        std::ofstream(root / "UDC") << '\n';
    fs::remove(root / "configs/c.1/hid.usb0", ignored);
    for (const char* directory : {"configs/c.1", "functions/hid.usb0", "strings/0x409", ""})
        removeDirectory(root / directory);
}

std::vector<std::string> freePorts()
{
    std::vector<std::string> ports;
    std::error_code ignored; // without device controllers there is no such directory
    for (const auto& port : fs::directory_iterator(controllers, ignored))
        if (lineOf(port.path() / "function").empty())
            ports.push_back(port.path().filename());
    std::sort(ports.begin(), ports.end());
    return ports;
}
