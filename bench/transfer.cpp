// bench-transfer stream|ticks|writes IMAGE-BYTES FIRST-PACKET PACKETS
// Sends packets of an image, from that number on, and measures them:
// stream: the real window, with its own buttons, bar and timer;
// ticks:  a 1 ms timer that updates a progress bar in a window, nothing more;
// writes: a 1 ms timer that makes the same hid_write calls, nothing more.

#include "bench/connectedwindow.h"
#include "bench/meter.h"
#include "tests/support/inside.h"
#include "unit/report.h"

#include <QApplication>
#include <QProgressBar>
#include <QTimer>

#include <hidapi.h>

#include <cstdlib>

namespace {

constexpr int warmUp = 200; // packets
constexpr int tickMs = 1;

struct Task
{
    int imageBytes;
    int firstPacket;
    Meter meter;
};

void quitSoon()
{
    QMetaObject::invokeMethod(qApp, &QCoreApplication::quit, Qt::QueuedConnection);
}

std::shared_ptr<QuickUnit> meteredUnit(Task& task)
{
    auto unit = std::make_shared<QuickUnit>();
    unit->onDataPacket = [&task] {
        if (task.meter.count())
            quitSoon();
    };
    unit->onFinalPacket = quitSoon;
    return unit;
}

void stream(Task& task)
{
    const auto unit = meteredUnit(task);
    const auto window = connectedWindow(unit, task.imageBytes);
    unit->onRequest = [&] { inside::of(*window).packetNumber = task.firstPacket - 1; };
    press(*window, "updateDeviceButton");
    QApplication::exec();
}

void tick(Task& task)
{
    QMainWindow window;
    window.resize(488, 440);
    QProgressBar bar(&window);
    bar.setGeometry(20, 160, 451, 21);
    window.show();
    constexpr qint64 packetBytes = 60;
    qint64 packets = task.firstPacket - 1;
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, &bar, [&] {
        bar.setValue(static_cast<int>(packets++ * packetBytes * 100 / task.imageBytes));
        if (task.meter.count())
            QCoreApplication::quit();
    });
    timer.start(tickMs);
    QApplication::exec();
}

void write(Task& task)
{
    qputenv("TALVEX_VIRTUAL_UNITS", ""); // with it set the bus keeps no record of the calls
    virtualbus::attach(QuickUnit::record(), meteredUnit(task));
    hid_device* const unit = hid_open_path("virtual:1");
    const report::Output packet{};
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, qApp, [&] { hid_write(unit, packet.data(), packet.size()); });
    timer.start(tickMs);
    QApplication::exec();
}

} // namespace

int main(int argc, char** argv)
{
    QApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    const QMap<QString, void (*)(Task&)> modes{{"stream", stream}, {"ticks", tick}, {"writes", write}};
    if (arguments.size() != 5 || !modes.contains(arguments[1]))
        qFatal("bench-transfer stream|ticks|writes IMAGE-BYTES FIRST-PACKET PACKETS");
    Task task{arguments[2].toInt(), arguments[3].toInt(), Meter(warmUp, arguments[4].toInt())};
    modes[arguments[1]](task);
    const int result = task.meter.print();
    std::fflush(stdout);
    std::_Exit(result); // the window's worker thread is still there
}
