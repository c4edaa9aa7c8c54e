#include "unit/hidio.h"

#include "unit/openunits.h"
#include "unit/report.h"

#include <hidapi.h>

#include <atomic>

namespace hidio {

namespace {

using Call = OpenUnits::Call;

std::atomic<bool> writesRefused = false;

OpenUnits& openUnits()
{
    static OpenUnits* const units = new OpenUnits; // lives until the process ends: a thread may be in a call
    return *units;
}

} // namespace

hid_device* open(const char* path)
{
    return openUnits().during(Call::limited, static_cast<hid_device*>(nullptr), [=] {
        hid_device* const device = hid_open_path(path);
        if (device != nullptr)
            openUnits().add(device);
        return device;
    });
}

void close(hid_device* device)
{
    (void)openUnits().during(Call::limited, false, [=] {
        const bool isOpen = openUnits().remove(device);
        if (isOpen)
            hid_close(device);
        return isOpen;
    });
}

void askForSerialNumber(hid_device* device)
{
    std::array<wchar_t, 16> serialNumber{};
    if (device != nullptr)
        (void)openUnits().during(Call::limited, failed, [&] {
            return hid_get_serial_number_string(device, serialNumber.data(), serialNumber.size());
        });
}

int write(hid_device* device, const unsigned char* report)
{
    if (device == nullptr || writesRefused)
        return failed;
    return openUnits().during(Call::limited, failed,
                              [=] { return hid_write(device, report, report::outputLength); });
}

int read(hid_device* device, unsigned char* report, int milliseconds)
{
    if (device == nullptr)
        return failed;
    return openUnits().during(Call::limited, failed, [=] {
        return hid_read_timeout(device, report, report::payloadLength, milliseconds);
    });
}

int readBlocking(hid_device* device, unsigned char* report)
{
    if (device == nullptr)
        return failed;
    return openUnits().during(Call::endless, failed,
                              [=] { return hid_read(device, report, report::payloadLength); });
}

bool isBusy()
{
    return openUnits().isBusy();
}

void refuseWrites()
{
    writesRefused = true;
}

void closeAll(std::chrono::milliseconds limit)
{
    openUnits().closeAll(limit, hid_close);
}

} // namespace hidio
