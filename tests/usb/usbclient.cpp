// Another program that uses a unit, through the flavour of the HID library that it is linked to.
//     hold         opens the unit, says "opened", and closes it once its input ends
//     pace COUNT   writes COUNT reports, one a tick of a 1 ms timer; prints the time it took in ms

#include "unit/unittype.h"

#include <hidapi.h>

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QTimer>

#include <array>
#include <cstdio>
#include <memory>

namespace {

constexpr std::size_t outputLength = 65; // the report ID in front

struct Close
{
    void operator()(hid_device* device) const { hid_close(device); }
};
using Unit = std::unique_ptr<hid_device, Close>;

Unit openFirst()
{
    hid_device_info* list = hid_enumerate(unitVendorId, 0);
    Unit unit(list != nullptr ? hid_open_path(list->path) : nullptr);
    hid_free_enumeration(list);
    return unit;
}

int hold()
{
    std::puts("opened");
    std::fflush(stdout);
    while (std::getchar() != EOF) {
    }
    return 0;
}

int pace(QCoreApplication& application, hid_device& unit, int count)
{
    const std::array<unsigned char, outputLength> report{};
    QElapsedTimer passed;
    QTimer timer;
    int left = count;
    QObject::connect(&timer, &QTimer::timeout, &application, [&] {
        if (hid_write(&unit, report.data(), report.size()) < 0)
            QCoreApplication::exit(1);
        else if (--left == 0)
            QCoreApplication::exit(0);
    });
    passed.start();
    timer.start(1);
    const int result = QCoreApplication::exec();
    std::printf("%lld\n", static_cast<long long>(passed.elapsed()));
    return result;
}

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    const Unit unit = openFirst();
    if (!unit) {
        std::fputs("no unit\n", stderr);
        return 1;
    }
    if (arguments.value(1) == "hold")
        return hold();
    if (arguments.value(1) == "pace")
        return pace(application, *unit, arguments.value(2).toInt());
    return 2;
}
