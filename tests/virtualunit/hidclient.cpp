// A small program that uses the HID library as any other does. It opens every device it finds, reads one
// report of each, writes one, and says what it got. With --leave-a-reader it ends while a thread is blocked
// in a read.

#include <hidapi.h>

#include <chrono>
#include <cstdio>
#include <cstring>
#include <future>
#include <thread>

namespace {

void use(const hid_device_info& info)
{
    hid_device* device = hid_open_path(info.path);
    std::printf("%04x %ls %s", info.product_id, info.product_string, device == nullptr ? "closed" : "open");
    if (device != nullptr) {
        unsigned char report[65] = {};
        const int size = hid_read_timeout(device, report + 1, 64, 1000);
        std::printf(" read %d version %d", size, report[64]);
        std::printf(" written %d", hid_write(device, report, 65));
        hid_close(device);
    }
    std::printf("\n");
}

void leaveAReader(const hid_device_info& info)
{
    hid_device* device = hid_open_path(info.path);
    std::promise<void> reading;
    std::thread([device, &reading] {
        unsigned char report[64];
        hid_read(device, report, sizeof report); // the first report
        std::printf("reading\n");
        reading.set_value();
        hid_read(device, report, sizeof report);
        std::printf("got a report that nobody sent\n");
    }).detach();
    reading.get_future().wait();
    std::this_thread::sleep_for(std::chrono::milliseconds(100)); // nothing tells when the read has blocked
}

} // namespace

int main(int count, char** arguments)
{
    hid_device_info* list = hid_enumerate(0x3A5D, 0);
    const bool leaves = count > 1 && std::strcmp(arguments[1], "--leave-a-reader") == 0;
    for (const hid_device_info* info = list; info != nullptr; info = info->next)
        leaves ? leaveAReader(*info) : use(*info);
    hid_free_enumeration(list);
    return 0;
}
