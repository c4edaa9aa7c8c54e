#include "fuzz/fuzzedunit.h"

#include <hidapi.h>

#include <algorithm>
#include <array>

struct hid_device_
{
    int number = 0;
    QByteArrayList tried;
};

namespace fuzzedunit {

namespace {

std::array<hid_device, 2> units;
Input* source = nullptr;
std::uint8_t failingWrites = 0;
int writes = 0;
std::vector<Read> allReads;

constexpr int reportLength = 64;

QByteArray reportOf(std::uint8_t code)
{
    QByteArray report(reportLength, '\x55');
    report[0] = report[60] = static_cast<char>(code);
    if (code == 0x20) {
        const int parts = source->number16();
        report[33] = report[34] = '\0';
        report[35] = static_cast<char>(parts >> 8);
        report[36] = static_cast<char>(parts & 0xFF);
    } else if (code == 0x50) {
        report[1] = static_cast<char>(source->byte());
    }
    return report;
}

/// The next answer; `waits`: the caller takes no time-out for one.
Read answer(bool waits)
{
    if (source->isEmpty())
        return waits ? Read{0, waits, reportLength, reportOf(0x60)} : Read{0, waits, 0, {}};
    switch (const std::uint8_t code = source->byte()) {
    case 0:
        return {0, waits, 0, {}};
    case 1:
        return {0, waits, -1, {}};
    case 2:
        return {0, waits, 1, reportOf(code)};
    default:
        return {0, waits, reportLength, reportOf(code)};
    }
}

int read(hid_device* device, unsigned char* data, std::size_t length, bool waits)
{
    expect(device != nullptr, "no null handle reaches the HID library");
    expect(length == reportLength, "64 bytes are asked for");
    Read read = answer(waits);
    read.unit = device->number;
    if (read.result > 0)
        std::copy_n(read.report.begin(), read.result, data);
    allReads.push_back(read);
    return read.result;
}

} // namespace

void begin(Input& input, std::uint8_t failing)
{
    source = &input;
    failingWrites = failing;
    writes = 0;
    allReads.clear();
    units = {hid_device{0, {}}, hid_device{1, {}}};
}

hid_device* handle(int unit)
{
    return &units.at(static_cast<std::size_t>(unit));
}

const std::vector<Read>& reads()
{
    return allReads;
}

const QByteArrayList& tried(int unit)
{
    return handle(unit)->tried;
}

} // namespace fuzzedunit

int hid_write(hid_device* device, const unsigned char* data, size_t length)
{
    expect(device != nullptr, "no null handle reaches the HID library");
    const QByteArray bytes(reinterpret_cast<const char*>(data), static_cast<int>(length));
    expect(bytes.size() == 65 && bytes[0] == '\0', "a write has 65 bytes and the ID 0");
    device->tried += bytes;
    if ((fuzzedunit::failingWrites >> (fuzzedunit::writes++ % 8) & 1) != 0)
        return -1;
    return static_cast<int>(length);
}

int hid_read_timeout(hid_device* device, unsigned char* data, size_t length, int milliseconds)
{
    expect(milliseconds == 1 || milliseconds == 100, "1 ms for an answer, 100 ms for a part or a status");
    return fuzzedunit::read(device, data, length, false);
}

int hid_read(hid_device* device, unsigned char* data, size_t length)
{
    return fuzzedunit::read(device, data, length, true);
}

// What a search for units uses; none of these targets searches.

hid_device_info* hid_enumerate(unsigned short, unsigned short)
{
    return nullptr;
}

void hid_free_enumeration(hid_device_info*) {}

hid_device* hid_open_path(const char*)
{
    return nullptr;
}

void hid_close(hid_device*) {}

int hid_get_serial_number_string(hid_device*, wchar_t*, size_t)
{
    return -1;
}
