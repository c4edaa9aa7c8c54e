// The program that is the units on this machine's bus leaves nothing behind, however it ends.

#include "tests/harness/outcome.h"
#include "tests/harness/waiting.h"
#include "tests/usb/pluggedunits.h"

#include <QDir>
#include <QtTest>

#include <csignal>

namespace {

QStringList foldersIn(const QString& path)
{
    return QDir(path).entryList(QDir::Dirs | QDir::NoDotAndDotDot);
}

QStringList devicesMade()
{
    return foldersIn("/sys/kernel/config/usb_gadget");
}

/// The device ports that are taken.
QStringList portsInUse()
{
    const QString all = "/sys/class/udc";
    QStringList used;
    for (const QString& port : foldersIn(all)) {
        QFile function(all + '/' + port + "/function");
        if (!function.open(QIODevice::ReadOnly) || !function.readAll().trimmed().isEmpty())
            used += port;
    }
    return used;
}

bool nothingIsLeft()
{
    return devicesMade().isEmpty() && portsInUse().isEmpty() && PluggedUnits::nodes().isEmpty();
}

} // namespace

class tst_usbgadget : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void endsAtASignal_data();
    void endsAtASignal();
    void endsAfterItsUnitVanished();
    void refuses_data();
    void refuses();
};

void tst_usbgadget::init()
{
    QVERIFY(nothingIsLeft());
}

void tst_usbgadget::endsAtASignal_data()
{
    QTest::addColumn<int>("signal");
    QTest::newRow("SIGTERM") << SIGTERM;
    QTest::newRow("SIGINT") << SIGINT;
    QTest::newRow("SIGHUP") << SIGHUP;
}

void tst_usbgadget::endsAtASignal()
{
    QFETCH(int, signal);
    ChildProcess gadget;
    gadget.start(TALVEX_GADGET, {"trk300-left;trk300-right"});
    QVERIFY(waitUntil([] { return PluggedUnits::nodes().size() == 2; }));
    QCOMPARE(devicesMade().size(), 2);
    QCOMPARE(portsInUse().size(), 2);
    ::kill(static_cast<pid_t>(gadget.processId()), signal);
    QVERIFY(waitUntil([&] { return gadget.state() == QProcess::NotRunning; }));
    QCOMPARE(gadget.exitStatus(), QProcess::NormalExit);
    QCOMPARE(gadget.exitCode(), 0);
    QCOMPARE(devicesMade(), QStringList());
    QCOMPARE(portsInUse(), QStringList());
    QVERIFY(waitUntil(nothingIsLeft)); // the system notices a little later
}

void tst_usbgadget::endsAfterItsUnitVanished()
{
    PluggedUnits units;
    MUST(units.plugIn({"hb4,fault=unplugged-at:1"}));
    QFile node(PluggedUnits::nodes().value(0));
    QVERIFY(node.open(QIODevice::WriteOnly | QIODevice::Unbuffered));
    node.write(QByteArray(65, '\0'));
    node.close();
    QVERIFY(waitUntil([] { return PluggedUnits::nodes().isEmpty(); }));
    QCOMPARE(devicesMade().size(), 1); // unplugged, not yet removed
    MUST(units.unplug());
    QVERIFY(nothingIsLeft());
}

void tst_usbgadget::refuses_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<int>("exitCode");
    QTest::addColumn<QString>("message");
    const QString own = "talvex-gadget: ";
    QTest::newRow("more units than ports")
        << QStringList("hb4;hb2;hbx") << 1 << own + "3 units need as many USB device ports; free here: 2\n";
    QTest::newRow("a fault of the host")
        << QStringList("hb4;hb2,fault=cannot-open") << 1
        << own + "on a real bus it is the host that refuses to open a unit\n";
    QTest::newRow("a mistake in the options")
        << QStringList("hb4,version=high") << 2 << own + "bad value in version=high\n";
    QTest::newRow("no units") << QStringList("") << 2 << own + "no units\n";
}

void tst_usbgadget::refuses()
{
    QFETCH(QStringList, arguments);
    QFETCH(int, exitCode);
    QFETCH(QString, message);
    ChildProcess gadget;
    gadget.start(TALVEX_GADGET, arguments);
    QVERIFY(waitUntil([&] { return gadget.state() == QProcess::NotRunning; }));
    QCOMPARE(QString::fromUtf8(gadget.readAllStandardError()), message);
    QCOMPARE(gadget.exitCode(), exitCode);
    QVERIFY(nothingIsLeft());
}

QTEST_GUILESS_MAIN(tst_usbgadget)

#include "tst_usbgadget.moc"
