// Another program that uses a unit, through the flavour of the HID library that it is linked to.
//     hold         opens the unit, says "opened", and closes it once its input ends
//     pace COUNT   writes COUNT reports to each unit, one a tick of a 1 ms timer; prints the time it took in
//     ms

#include "unit/unittype.h"

#include <hidapi.h>

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QTimer>

#include <algorithm>
#include <array>
#include <cstdio>
#include <memory>
#include <vector>

namespace {

constexpr std::size_t outputLength = 65; // the report ID in front

struct Close
{
    void operator()(hid_device* device) const { hid_close(device); }
};
using Unit = std::unique_ptr<hid_device, Close>;

/// All units there are; none: there are none, or one cannot be opened.
std::vector<Unit> openAll()
{
    hid_device_info* list = hid_enumerate(unitVendorId, 0);
    std::vector<Unit> units;
    for (const hid_device_info* info = list; info != nullptr; info = info->next)
        units.emplace_back(hid_open_path(info->path));
    hid_free_enumeration(list);
    if (std::find(units.begin(), units.end(), nullptr) != units.end())
        units.clear();
    return units;
}

int hold()
{
    std::puts("opened");
    std::fflush(stdout);
    while (std::getchar() != EOF) {
    }
    return 0;
}

int pace(QCoreApplication& application, const std::vector<Unit>& units, int count)
{
    const std::array<unsigned char, outputLength> report{};
    QElapsedTimer passed;
    QTimer timer;
    int left = count;
    const auto fails = [&](const Unit& unit) {
        return hid_write(unit.get(), report.data(), report.size()) < 0;
    };
    QObject::connect(&timer, &QTimer::timeout, &application, [&] {
        if (std::any_of(units.begin(), units.end(), fails))
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
    const std::vector<Unit> units = openAll();
    if (units.empty()) {
        std::fputs("no unit\n", stderr);
        return 1;
    }
    if (arguments.value(1) == "hold")
        return hold();
    if (arguments.value(1) == "pace")
        return pace(application, units, arguments.value(2).toInt());
    return 2;
}
