// A program that uses units through the HID library it is linked to, and tells line by line what it sees of
// them. Its argument is one of the scenes below. The expected lines stand in observations.cpp.

#include "tests/support/limits.h"
#include "tests/virtualunit/host.h"
#include "tests/virtualunit/loghost.h"

#include <hidapi.h>

#include <QDeadlineTimer>
#include <QElapsedTimer>
#include <QThread>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <future>
#include <memory>
#include <string_view>
#include <thread>

namespace {

struct Close
{
    void operator()(hid_device* device) const { hid_close(device); }
};
struct FreeList
{
    void operator()(hid_device_info* list) const { hid_free_enumeration(list); }
};
using Unit = std::unique_ptr<hid_device, Close>;
using List = std::unique_ptr<hid_device_info, FreeList>;
using Buffer = std::array<unsigned char, 64>;

List units()
{
    return List(hid_enumerate(unitVendorId, 0));
}

Unit openFirst()
{
    const List list = units();
    if (!list) {
        std::fputs("no unit\n", stderr);
        std::exit(1);
    }
    return Unit(hid_open_path(list->path));
}

int write(const Unit& unit, const host::Bytes& report)
{
    return hid_write(unit.get(), reinterpret_cast<const unsigned char*>(report.constData()),
                     static_cast<std::size_t>(report.size()));
}

int read(const Unit& unit, Buffer& report, int limitMs)
{
    return hid_read_timeout(unit.get(), report.data(), report.size(), limitMs);
}

/// Gives a unit time for reports that cannot be awaited, as they must not be read: on a real bus it sends
/// them while this waits.
void leaveTime(int ms)
{
    QThread::msleep(static_cast<unsigned long>(limits::lengthened(ms)));
}

const wchar_t* shown(const wchar_t* text)
{
    return text != nullptr ? text : L"(none)";
}

void list()
{
    const List list = units();
    for (const hid_device_info* info = list.get(); info != nullptr; info = info->next) {
        std::printf("%04x:%04x %ls %ls %ls\n", info->vendor_id, info->product_id, shown(info->product_string),
                    shown(info->serial_number), shown(info->manufacturer_string));
        std::printf("release %04x usage %x:%x interface %d bus %d\n", info->release_number, info->usage_page,
                    info->usage, info->interface_number, info->bus_type);
        const Unit unit(hid_open_path(info->path));
        std::puts(unit ? "open" : "closed");
    }
}

/// As any program does: of each unit one report is read, and written back.
void use()
{
    const List list = units();
    for (const hid_device_info* info = list.get(); info != nullptr; info = info->next) {
        const Unit unit(hid_open_path(info->path));
        std::printf("%04x %ls %s", info->product_id, info->product_string, unit ? "open" : "closed");
        if (unit) {
            Buffer report{};
            const int size = read(unit, report, 1000);
            const host::Bytes bytes(reinterpret_cast<const char*>(report.data()), 64);
            std::printf(" read %d version %d written %d", size, report[63], write(unit, '\0' + bytes));
        }
        std::puts("");
    }
}

void openTwice()
{
    Unit first = openFirst();
    std::printf("first %d, second %d\n", first != nullptr, openFirst() != nullptr);
    std::printf("listed as %ls\n", shown(units()->product_string));
    first.reset();
    std::printf("afterwards %d\n", openFirst() != nullptr);
}

void strings()
{
    const Unit unit = openFirst();
    std::array<wchar_t, 16> text{};
    const auto tell = [&](const char* what, int result) {
        std::printf("%s %d %ls\n", what, result, result == 0 ? text.data() : L"");
    };
    tell("product", hid_get_product_string(unit.get(), text.data(), text.size()));
    tell("product in 3", hid_get_product_string(unit.get(), text.data(), 3));
    tell("serial", hid_get_serial_number_string(unit.get(), text.data(), text.size()));
    tell("maker", hid_get_manufacturer_string(unit.get(), text.data(), text.size()));
    tell("index 9", hid_get_indexed_string(unit.get(), 9, text.data(), text.size()));
    std::printf("error %ls\n", hid_error(unit.get()));
}

void writes()
{
    const Unit unit = openFirst();
    const host::Bytes report = host::finalPacket(host::older, 1, "abc"); // which nobody asked for
    for (const int length : {65, 3, 0, 65})
        std::printf("write of %d: %d\n", length, write(unit, report.left(length)));
}

void reads()
{
    const Unit unit = openFirst();
    Buffer report{};
    QElapsedTimer passed;
    passed.start();
    const int result = read(unit, report, 30);
    std::printf("nothing comes %d, %s\n", result, passed.elapsed() >= 30 ? "30 ms later" : "too early");
    std::printf("nonblocking %d\n", hid_set_nonblocking(unit.get(), 1));
    std::printf("at once %d\n", hid_read(unit.get(), report.data(), report.size()));
}

/// Many reports without a status, many with 9, and then no more: which of them are kept for a host that reads
/// none?
void queue()
{
    const Unit unit = openFirst();
    write(unit, host::request(host::older, host::digestOf("")));
    leaveTime(1500);
    write(unit, host::logRequest(host::older));
    leaveTime(200);
    Buffer report{};
    int kept = 0;
    unsigned oldest = 0;
    for (; read(unit, report, 0) == 64; ++kept)
        oldest = kept == 0 ? report[0] : oldest;
    std::printf("kept %d, status %X to %X\n", kept, oldest >> 4, report[0] >> 4U);
}

void unplug()
{
    const Unit unit = openFirst();
    const std::string path = units()->path;
    leaveTime(200);
    write(unit, host::report({{1, 0x80}}));
    std::printf("the last write %d\n", write(unit, host::report({{1, 0x80}})));
    const QDeadlineTimer limit(limits::hang());
    while (units() && !limit.hasExpired())
        QThread::msleep(10); // between two looks
    std::printf("listed %d, opened %d\n", units() != nullptr, Unit(hid_open_path(path.c_str())) != nullptr);
    std::printf("write %d\n", write(unit, host::report({{1, 0x80}})));
    Buffer report{};
    int kept = 0;
    while (kept < 100 && read(unit, report, limits::hangMs()) == 64)
        ++kept;
    std::printf("%s, then %d\n", kept > 0 ? "reports from before" : "nothing",
                read(unit, report, limits::hangMs()));
    std::printf("read without limit %d\n", hid_read(unit.get(), report.data(), report.size()));
    std::array<wchar_t, 16> text{};
    std::printf("serial %d\n", hid_get_serial_number_string(unit.get(), text.data(), text.size()));
}

/// A system may keep a few reports for a unit before it notices that nobody takes them.
void takesNothing()
{
    const Unit unit = openFirst();
    QElapsedTimer passed;
    int result = 65;
    for (int tries = 0; tries < 10 && result == 65; ++tries) {
        passed.start();
        result = write(unit, host::report({}));
    }
    std::printf("write %d, %s\n", result, passed.elapsed() >= 1000 ? "a second later" : "too early");
    Buffer report{};
    std::printf("read %d\n", read(unit, report, limits::hangMs()));
}

/// Units of one model, told apart by their versions.
void twins()
{
    const List list = units();
    for (const hid_device_info* info = list.get(); info != nullptr; info = info->next) {
        const Unit unit(hid_open_path(info->path));
        Buffer report{};
        const int result = read(unit, report, limits::hangMs());
        std::printf("read %d, version %d\n", result, report[63]);
    }
}

/// Ends while a thread is blocked in a read.
void leaveAReader()
{
    hid_device* const device = openFirst().release();
    std::promise<void> reading;
    std::thread([device, &reading] {
        Buffer report{};
        hid_read(device, report.data(), report.size()); // the first report
        std::puts("reading");
        reading.set_value();
        hid_read(device, report.data(), report.size());
        std::puts("got a report that nobody sent");
    }).detach();
    reading.get_future().wait();
    leaveTime(100); // nothing tells when the read has blocked
}

struct Scene
{
    std::string_view name;
    void (*play)();
};
constexpr std::array scenes{Scene{"list", list},
                            Scene{"open-twice", openTwice},
                            Scene{"strings", strings},
                            Scene{"writes", writes},
                            Scene{"reads", reads},
                            Scene{"queue", queue},
                            Scene{"unplug", unplug},
                            Scene{"twins", twins},
                            Scene{"takes-nothing", takesNothing},
                            Scene{"use", use},
                            Scene{"leave-a-reader", leaveAReader}};

} // namespace

int main(int argc, char** argv)
{
    const std::string_view wanted = argc > 1 ? argv[1] : "";
    const auto scene =
        std::find_if(scenes.begin(), scenes.end(), [=](const Scene& s) { return s.name == wanted; });
    if (scene == scenes.end()) {
        std::fputs("no such scene\n", stderr);
        return 1;
    }
    scene->play();
    return 0;
}
