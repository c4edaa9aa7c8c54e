#include "virtualunit/hidapi/inforecord.h"

#include <cstdlib>
#include <cstring>
#include <cwchar>

namespace virtualbus {
namespace {

wchar_t* newWideText(const std::optional<std::string>& text)
{
    if (!text)
        return nullptr;
    const std::wstring wide(text->begin(), text->end()); // the strings of units are ASCII
    return wcsdup(wide.c_str());
}

} // namespace

hid_device_info* makeInfo(const Slot& slot)
{
    auto* info = static_cast<hid_device_info*>(std::calloc(1, sizeof(hid_device_info)));
    if (info == nullptr)
        std::abort();
    info->path = slot.record.hasPath ? strdup(slot.path().c_str()) : nullptr;
    info->vendor_id = slot.record.vendorId;
    info->product_id = slot.record.productId;
    info->serial_number = newWideText(slot.record.serial);
    info->release_number = 0x0100;
    info->manufacturer_string = newWideText(slot.record.manufacturer);
    info->product_string = newWideText(slot.record.product);
    info->bus_type = HID_API_BUS_USB;
    return info;
}

void freeInfo(hid_device_info* list)
{
    while (list != nullptr) {
        hid_device_info* next = list->next;
        std::free(list->path);
        std::free(list->serial_number);
        std::free(list->manufacturer_string);
        std::free(list->product_string);
        std::free(list);
        list = next;
    }
}

} // namespace virtualbus
