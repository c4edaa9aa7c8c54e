// bench-log program|bare|lean|chain LOG-BYTES
// Pulls a log of that size from a unit that answers at once, and measures its parts:
// program: the real window, with its own buttons, worker thread, file and bar;
// bare:    a loop of the same reads, writes and timers, with the same file writes and progress;
// lean:    the same without file and progress;
// chain:   only the 1 ms single shots on a worker thread.

#include "bench/bareloop.h"
#include "bench/connectedwindow.h"

#include <QApplication>
#include <QKeyEvent>
#include <QProgressBar>
#include <QThread>

#include <hidapi.h>

#include <cstdlib>
#include <fcntl.h>
#include <unistd.h>

namespace {

constexpr int partBytes = 63;
constexpr int warmUp = 50; // parts

struct Task
{
    QString mode;
    int parts;
    Meter meter;
};

std::shared_ptr<QuickUnit> meteredUnit(Task& task)
{
    auto unit = std::make_shared<QuickUnit>();
    unit->logParts = task.parts;
    unit->onLogPart = [&task] {
        if (task.meter.count()) // the last part follows, and with it the program's closing box
            QMetaObject::invokeMethod(qApp, dismissNextBox, Qt::QueuedConnection);
    };
    return unit;
}

void runProgram(Task& task)
{
    const auto window = connectedWindow(meteredUnit(task), partBytes);
    QKeyEvent offer(QEvent::KeyPress, Qt::Key_L, Qt::ControlModifier | Qt::ShiftModifier);
    QApplication::sendEvent(window.get(), &offer);
    press(*window, "downloadLogFile");
    QApplication::exec();
}

/// Opens a quick unit and asks it for its log; the loop begins with its header.
hid_device* requestLog(Task& task)
{
    qputenv("TALVEX_VIRTUAL_UNITS", ""); // with it set the bus keeps no record of the calls
    virtualbus::attach(QuickUnit::record(), meteredUnit(task));
    hid_device* const unit = hid_open_path("virtual:1");
    report::Input first{};
    hid_read(unit, first.data(), first.size());
    const report::Output request{0x00, 0x10, 0x01};
    hid_write(unit, request.data(), request.size());
    return unit;
}

void runBareLoop(Task& task)
{
    QMainWindow window;
    QProgressBar bar(&window);
    bar.setGeometry(20, 160, 451, 21);
    window.resize(488, 440);
    window.show();

    QThread worker;
    BareLoop loop;
    loop.parts = task.parts;
    loop.meter = &task.meter;
    if (task.mode != "chain")
        loop.unit = requestLog(task);
    if (task.mode == "bare") {
        loop.file = ::open("bare.log", O_WRONLY | O_CREAT | O_TRUNC, 0600);
        loop.tellsProgress = true;
    }
    loop.moveToThread(&worker);
    QObject::connect(&worker, &QThread::started, &loop, &BareLoop::next);
    QObject::connect(&loop, &BareLoop::progress, &bar, &QProgressBar::setValue);
    QObject::connect(&loop, &BareLoop::finished, qApp, &QCoreApplication::quit);
    worker.start();
    QApplication::exec();
    worker.quit();
    worker.wait();
}

} // namespace

void BareLoop::step()
{
    ++done;
    if (unit != nullptr)
        exchange();
    else
        meter->count();
    if (tellsProgress)
        emit progress(static_cast<int>(qint64(done) * 100 / parts));
    if (done == parts)
        emit finished();
    else
        next();
}

void BareLoop::exchange()
{
    hid_read_timeout(unit, reply.data(), reply.size(), 100);
    if (file >= 0 && ::write(file, &reply[1], partBytes) != partBytes)
        qFatal("cannot write the log");
    hid_write(unit, acknowledge.data(), acknowledge.size());
}

int main(int argc, char** argv)
{
    QApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() != 3 || !QStringList{"program", "bare", "lean", "chain"}.contains(arguments[1]))
        qFatal("bench-log program|bare|lean|chain LOG-BYTES");
    const int parts = arguments[2].toInt() / partBytes + 1;
    Task task{arguments[1], parts, Meter(warmUp, parts - warmUp - 1)};
    if (task.mode == "program")
        runProgram(task);
    else
        runBareLoop(task);
    const int result = task.meter.print();
    std::fflush(stdout);
    std::_Exit(result); // the window's worker thread is still there
}
