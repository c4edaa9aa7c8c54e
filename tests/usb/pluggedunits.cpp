#include "tests/usb/pluggedunits.h"

#include "tests/harness/processtime.h"
#include "tests/harness/waiting.h"
#include "tests/harness/wine.h"
#include "tests/support/filecontent.h"
#include "tests/support/texts.h"

#include <QDir>
#include <QElapsedTimer>

#include <csignal>
#include <fcntl.h>
#include <unistd.h>

namespace {

constexpr const char* vendor = ":00003A5D:"; // as in HID_ID=0003:00003A5D:00000A21

bool canBeOpened(const QString& node)
{
    const int opened = ::open(QFile::encodeName(node).constData(), O_RDWR | O_CLOEXEC);
    if (opened >= 0)
        ::close(opened);
    return opened >= 0;
}

} // namespace

PluggedUnits::~PluggedUnits()
{
    if (frozen)
        ::kill(static_cast<pid_t>(gadget.processId()), SIGCONT);
}

Outcome PluggedUnits::plugIn(const QStringList& units, const QString& more)
{
    gadget.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    // Wine takes the maker's name for a part of the product's.
    const QString all = more + (wine::isUsed() ? ",no-manufacturer=yes" : "");
    gadget.start(TALVEX_GADGET, {units.join(all + ';') + all});
    count = units.size();
    const bool seen =
        waitUntil([&] { return nodes().size() == count || gadget.state() == QProcess::NotRunning; });
    if (gadget.state() == QProcess::NotRunning)
        return Outcome("the gadget ended with " + QString::number(gadget.exitCode()) + ' ' +
                       gadget.errorString());
    return seen ? Outcome() : Outcome("the system did not find the units; it has " + nodes().join(' '));
}

Outcome PluggedUnits::fillUp()
{
    constexpr int kept = 4;
    const QByteArray report(65, '\0');
    const QStringList found = nodes();
    for (const QString& node : found) {
        QFile file(node);
        if (!file.open(QIODevice::WriteOnly | QIODevice::Unbuffered))
            return Outcome("cannot open " + node);
        for (int written = 0; written < kept; ++written)
            if (file.write(report) != report.size())
                return Outcome("cannot write to " + node + ": " + file.errorString());
    }
    return {};
}

Outcome PluggedUnits::unplug()
{
    if (frozen)
        ::kill(static_cast<pid_t>(gadget.processId()), SIGCONT);
    frozen = false;
    gadget.end();
    if (gadget.exitStatus() != QProcess::NormalExit || gadget.exitCode() != 0)
        return Outcome("the gadget ended with " + QString::number(gadget.exitCode()));
    count = 0;
    return waitUntil([] { return nodes().isEmpty(); }) ? Outcome() : Outcome("the system kept the units");
}

void PluggedUnits::freeze()
{
    frozen = true;
    ::kill(static_cast<pid_t>(gadget.processId()), SIGSTOP);
}

Outcome PluggedUnits::seeGivenBack() const
{
    const auto allBack = [&] {
        const QStringList found = nodes();
        return found.size() == count && std::all_of(found.begin(), found.end(), canBeOpened);
    };
    return waitUntil(allBack) ? Outcome() : Outcome("not given back; the system has " + nodes().join(' '));
}

QStringList PluggedUnits::nodes()
{
    const QString all = "/sys/class/hidraw";
    QStringList found;
    const QStringList names = QDir(all).entryList(QDir::Dirs | QDir::NoDotAndDotDot);
    for (const QString& name : names)
        if (contentOf(all + '/' + name + "/device/uevent").contains(vendor))
            found += "/dev/" + name;
    return found;
}

void useRealBus(Program& program)
{
    program.useSystemsHid();
    // Neither is to be had here, and looking for them takes an emulated processor seconds.
    program.setVariable("DBUS_SESSION_BUS_ADDRESS", "disabled:");
    program.setVariable("QT_XCB_GL_INTEGRATION", "none");
    // The real HID library does not bring the probe with it.
    program.setVariable("WINEQT_QPA_GENERIC_PLUGINS", "talvexprobe");
}

Outcome connectOnceHeardOf(Program& program, const QString& message)
{
    const QDeadlineTimer limit(limits::hang());
    do {
        STEP(program.press("connect_button"));
        STEP(program.waitFor("a box", [](const View& view) { return view.box().has_value(); }));
        if (program.look().box() != errorBox(text::notFound))
            break;
        STEP(program.answer("Ok"));
        STEP(program.waitForNoBox());
    } while (!limit.hasExpired());
    STEP(program.waitForBox(infoBox(message)));
    return program.answer("Ok");
}

int processorLoad(Program& program)
{
    const qint64 process = program.processId();
    QElapsedTimer passed;
    passed.start();
    const std::chrono::milliseconds before = processorTime(process);
    QThread::sleep(1); // a share is one of some time, however long this one becomes
    return static_cast<int>((processorTime(process) - before).count() * 100 / passed.elapsed());
}

QString flavour()
{
    return qEnvironmentVariable("TALVEX_TEST_FLAVOUR");
}

bool takesRow(int row)
{
    return TALVEX_USB_ALL || row % 2 == (flavour() == "libusb" ? 0 : 1);
}
