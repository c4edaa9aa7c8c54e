// hidapi's public interface, as hidapi.h of 0.13 declares it, on the virtual bus.

#include "virtualunit/hidapi/bus.h"
#include "virtualunit/hidapi/inforecord.h"

#ifdef _WIN32
#include <hidapi.h>
#else
#include <hidapi_libusb.h>
#endif

#include <cwchar>

using virtualbus::Bus;
using virtualbus::Call;

namespace {

int readReport(const char* function, hid_device* device, unsigned char* data, std::size_t length,
               std::optional<int> timeout)
{
    Bus& bus = Bus::instance();
    std::unique_lock lock(bus.mutex);
    hid_device& handle = bus.checked(function, device);
    const int wait = timeout.value_or(handle.nonblocking ? 0 : -1);
    const int number = handle.number;
    const int result = bus.read(lock, handle, {data, length}, wait);
    bus.record(
        {.function = function, .handle = number, .length = length, .timeout = timeout, .result = result});
    return result;
}

/// The device's strings by USB string index; a unit has no others.
std::optional<std::string> stringAt(const virtualbus::DeviceRecord& record, int index)
{
    switch (index) {
    case 1:
        return record.manufacturer;
    case 2:
        return record.product;
    case 3:
        return record.serial;
    default:
        return std::nullopt;
    }
}

int readString(const char* function, hid_device* device, int index, wchar_t* target, std::size_t length)
{
    Bus& bus = Bus::instance();
    const std::lock_guard lock(bus.mutex);
    hid_device& handle = bus.checked(function, device);
    const std::optional<std::string> text = stringAt(handle.slot->record, index);
    const bool readable = text && length > 0 && handle.slot->isPresent();
    if (readable) {
        const std::wstring wide(text->begin(), text->end());
        target[wide.copy(target, length - 1)] = L'\0';
    }
    const int result = readable ? 0 : -1;
    bus.record({.function = function, .handle = handle.number, .length = length, .result = result});
    return result;
}

/// Units have neither feature reports nor input reports on request.
int refuseControlReport(const char* function, hid_device* device, std::size_t length)
{
    Bus& bus = Bus::instance();
    const std::lock_guard lock(bus.mutex);
    const hid_device& handle = bus.checked(function, device);
    bus.record({.function = function, .handle = handle.number, .length = length, .result = -1});
    return -1;
}

int recordPlainCall(const char* function)
{
    Bus& bus = Bus::instance();
    const std::lock_guard lock(bus.mutex);
    bus.record({.function = function, .result = 0});
    return 0;
}

} // namespace

extern "C" {

HID_API_EXPORT int hid_init(void)
{
    return recordPlainCall("hid_init");
}

HID_API_EXPORT int hid_exit(void)
{
    return recordPlainCall("hid_exit");
}

HID_API_EXPORT hid_device_info* hid_enumerate(unsigned short vendor, unsigned short product)
{
    Bus& bus = Bus::instance();
    const std::lock_guard lock(bus.mutex);
    hid_device_info* list = bus.enumerate(vendor, product);
    int count = 0;
    for (const hid_device_info* info = list; info != nullptr; info = info->next)
        ++count;
    bus.record({.function = "hid_enumerate", .vendor = vendor, .product = product, .result = count});
    return list;
}

HID_API_EXPORT void hid_free_enumeration(hid_device_info* list)
{
    Bus& bus = Bus::instance();
    const std::lock_guard lock(bus.mutex);
    bus.freeEnumeration(list);
    bus.record({.function = "hid_free_enumeration"});
}

HID_API_EXPORT hid_device* hid_open(unsigned short vendor, unsigned short product, const wchar_t* serial)
{
    hid_device_info* list = hid_enumerate(vendor, product);
    const hid_device_info* match = list;
    while (serial != nullptr && match != nullptr &&
           (match->serial_number == nullptr || std::wcscmp(serial, match->serial_number) != 0))
        match = match->next;
    hid_device* device = match == nullptr ? nullptr : hid_open_path(match->path);
    hid_free_enumeration(list);
    return device;
}

HID_API_EXPORT hid_device* hid_open_path(const char* path)
{
    Bus& bus = Bus::instance();
    const std::lock_guard lock(bus.mutex);
    hid_device* device = bus.open(path);
    bus.record({.function = "hid_open_path", .path = path, .result = device == nullptr ? 0 : device->number});
    return device;
}

#ifndef _WIN32
HID_API_EXPORT hid_device* hid_libusb_wrap_sys_device(intptr_t, int)
{
    return nullptr; // there is no device of the system behind this library
}
#endif

HID_API_EXPORT int hid_write(hid_device* device, const unsigned char* data, size_t length)
{
    Bus& bus = Bus::instance();
    std::unique_lock lock(bus.mutex);
    hid_device& handle = bus.checked("hid_write", device);
    const int number = handle.number;
    std::vector<std::uint8_t> bytes(data, data + length);
    const int result = bytes.empty() ? -1 : bus.write(lock, handle, bytes);
    bus.record({.function = "hid_write",
                .handle = number,
                .length = length,
                .bytes = std::move(bytes),
                .result = result});
    return result;
}

HID_API_EXPORT int hid_read_timeout(hid_device* device, unsigned char* data, size_t length, int milliseconds)
{
    return readReport("hid_read_timeout", device, data, length, milliseconds);
}

HID_API_EXPORT int hid_read(hid_device* device, unsigned char* data, size_t length)
{
    return readReport("hid_read", device, data, length, std::nullopt);
}

HID_API_EXPORT int hid_set_nonblocking(hid_device* device, int nonblock)
{
    Bus& bus = Bus::instance();
    const std::lock_guard lock(bus.mutex);
    hid_device& handle = bus.checked("hid_set_nonblocking", device);
    handle.nonblocking = nonblock != 0;
    bus.record({.function = "hid_set_nonblocking", .handle = handle.number, .result = 0});
    return 0;
}

HID_API_EXPORT int hid_send_feature_report(hid_device* device, const unsigned char*, size_t length)
{
    return refuseControlReport("hid_send_feature_report", device, length);
}

HID_API_EXPORT int hid_get_feature_report(hid_device* device, unsigned char*, size_t length)
{
    return refuseControlReport("hid_get_feature_report", device, length);
}

HID_API_EXPORT int hid_get_input_report(hid_device* device, unsigned char*, size_t length)
{
    return refuseControlReport("hid_get_input_report", device, length);
}

HID_API_EXPORT void hid_close(hid_device* device)
{
    Bus& bus = Bus::instance();
    const std::lock_guard lock(bus.mutex);
    hid_device& handle = bus.checked("hid_close", device);
    bus.close(handle);
    bus.record({.function = "hid_close", .handle = handle.number});
}

HID_API_EXPORT int hid_get_manufacturer_string(hid_device* device, wchar_t* string, size_t maxlen)
{
    return readString("hid_get_manufacturer_string", device, 1, string, maxlen);
}

HID_API_EXPORT int hid_get_product_string(hid_device* device, wchar_t* string, size_t maxlen)
{
    return readString("hid_get_product_string", device, 2, string, maxlen);
}

HID_API_EXPORT int hid_get_serial_number_string(hid_device* device, wchar_t* string, size_t maxlen)
{
    return readString("hid_get_serial_number_string", device, 3, string, maxlen);
}

HID_API_EXPORT int hid_get_indexed_string(hid_device* device, int index, wchar_t* string, size_t maxlen)
{
    return readString("hid_get_indexed_string", device, index, string, maxlen);
}

HID_API_EXPORT hid_device_info* hid_get_device_info(hid_device* device)
{
    Bus& bus = Bus::instance();
    const std::lock_guard lock(bus.mutex);
    hid_device& handle = bus.checked("hid_get_device_info", device);
    if (handle.info == nullptr)
        handle.info = virtualbus::makeInfo(*handle.slot);
    bus.record({.function = "hid_get_device_info", .handle = handle.number});
    return handle.info;
}

HID_API_EXPORT const wchar_t* hid_error(hid_device*)
{
    return L"hid_error is not implemented yet"; // all that the libusb flavour ever says
}

HID_API_EXPORT const hid_api_version* hid_version(void)
{
    static constexpr hid_api_version version{HID_API_VERSION_MAJOR, HID_API_VERSION_MINOR,
                                             HID_API_VERSION_PATCH};
    return &version;
}

HID_API_EXPORT const char* hid_version_str(void)
{
    return HID_API_VERSION_STR;
}

} // extern "C"
