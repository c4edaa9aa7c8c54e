#include "tests/support/rows.h"
#include "tests/virtualunit/hidcalls.h"

#include <QElapsedTimer>
#include <QTest>

#include <thread>

using hidcalls::OpenScript;
using hidcalls::openUnit;
using hidcalls::Read;
using hidcalls::readTimeout;
using hidcalls::write;

using Waker = void (*)(const OpenScript&);
Q_DECLARE_METATYPE(Waker)

/// Input and output reports through hidapi's interface, as a caller sees them.
class TestVirtualReports : public QObject
{
    Q_OBJECT

private slots:
    void init() { virtualbus::clear(); }
    void cleanup() { virtualbus::clear(); }

    void newest32ReportsAreKept();
    void floodIsPacedByItsReader();
    void timeOuts_data();
    void timeOuts();
    void timeOutIsNotShorterThanAsked();
    void zeroLengthReportReadsAsNothing();
    void shortBufferCutsTheReport();
    void nonblockingRead();
    void blockedRead_data();
    void blockedRead();
    void unpluggedDeviceGivesItsQueueFirst();
    void writes();
    void unitThatTakesNothingBlocksTheWriter();
    void blockedWriterKeepsNobodyWaiting();
    void readerAndWriterInTwoThreads();
};

void TestVirtualReports::newest32ReportsAreKept()
{
    const OpenScript unit;
    virtualbus::change([&] {
        for (std::uint8_t i = 0; i < 40; ++i)
            unit.script->input.push_back(Bytes(64, i));
    });
    for (char i = 8; i < 40; ++i)
        QCOMPARE(readTimeout(unit.device, 0).bytes, QByteArray(64, i));
    QCOMPARE(readTimeout(unit.device, 0).result, 0);
}

/// However fast it reads, so many reports wait, and no more.
void TestVirtualReports::floodIsPacedByItsReader()
{
    virtualunit::Options options = host::options("hb4,period-ms=0");
    options.flood = 3;
    const int unit = virtualbus::attach(options);
    hid_device* device = hidcalls::openFirst();
    for (int i = 0; i < 1000; ++i)
        QCOMPARE(readTimeout(device, 0).result, 64);
    virtualbus::unplug(unit);
    for (int i = 0; i < 3; ++i)
        QCOMPARE(readTimeout(device, 0).result, 64);
    QCOMPARE(readTimeout(device, 0).result, -1);
}

void TestVirtualReports::timeOuts_data()
{
    QTest::addColumn<int>("milliseconds");
    QTest::newRow("at once") << 0;
    QTest::newRow("1 ms") << 1;
    QTest::newRow("100 ms") << 100;
}

void TestVirtualReports::timeOuts()
{
    QFETCH(int, milliseconds);
    QCOMPARE(readTimeout(OpenScript().device, milliseconds).result, 0);
    const virtualbus::Call call = virtualbus::callsOf("hid_read_timeout").at(0);
    QVERIFY(call.timeout == milliseconds);
    QVERIFY(call.result == 0);
}

void TestVirtualReports::timeOutIsNotShorterThanAsked()
{
    const OpenScript unit;
    for (int i = 0; i < 20; ++i) {
        QElapsedTimer timer;
        timer.start();
        readTimeout(unit.device, 2);
        QVERIFY(timer.nsecsElapsed() >= 2000000); // a slow machine only adds to it
    }
}

void TestVirtualReports::zeroLengthReportReadsAsNothing()
{
    const OpenScript unit;
    unit.script->say({});
    unit.script->say({7});
    QCOMPARE(readTimeout(unit.device, -1).result, 0);
    QCOMPARE(readTimeout(unit.device, -1).bytes, QByteArray(1, 7));
}

void TestVirtualReports::shortBufferCutsTheReport()
{
    const OpenScript unit;
    unit.script->say({1, 2, 3, 4});
    unit.script->say({5});
    unsigned char buffer[3] = {9, 9, 9};
    QCOMPARE(hid_read(unit.device, buffer, 2), 2);
    QCOMPARE(QByteArray(reinterpret_cast<char*>(buffer), 3), QByteArray("\1\2\11"));
    QCOMPARE(hid_read(unit.device, buffer, 2), 1);
}

void TestVirtualReports::nonblockingRead()
{
    const OpenScript unit;
    QCOMPARE(hid_set_nonblocking(unit.device, 1), 0);
    unsigned char buffer[64];
    QCOMPARE(hid_read(unit.device, buffer, sizeof buffer), 0);
    unit.script->say({1});
    QCOMPARE(hid_read(unit.device, buffer, sizeof buffer), 1);
}

void TestVirtualReports::blockedRead_data()
{
    const Rows<Waker, bool, int, int> row("wake", "hasTimeOut", "result", "closings"); // of -1 ms, if any
    const Waker say = [](const OpenScript& unit) { unit.script->say({1, 2, 3}); };
    const Waker unplug = [](const OpenScript& unit) { virtualbus::unplug(unit.number); };
    const Waker close = [](const OpenScript& unit) { hid_close(unit.device); };
    const Waker clear = [](const OpenScript&) { virtualbus::clear(); };
    row("a report comes", say, false, 3, 0);
    row("the unit is unplugged", unplug, true, -1, 0);
    row("the handle is closed", close, true, -1, 1);
    row("the bus is cleared", clear, false, -1, 0);
}

/// It waits until something wakes it.
void TestVirtualReports::blockedRead()
{
    QFETCH(Waker, wake);
    QFETCH(bool, hasTimeOut);
    const OpenScript unit;
    std::atomic<int> result{99};
    std::thread reader([&] {
        unsigned char buffer[64];
        result = hasTimeOut ? hid_read_timeout(unit.device, buffer, sizeof buffer, -1)
                            : hid_read(unit.device, buffer, sizeof buffer);
    });
    QTRY_VERIFY(unit.script->keepsSomebodyWaiting());
    QCOMPARE(result.load(), 99);
    wake(unit);
    reader.join();
    QTEST(result.load(), "result");
    QTEST(unit.script->closings, "closings");
}

void TestVirtualReports::unpluggedDeviceGivesItsQueueFirst()
{
    hid_device* const device = openUnit("hb4,period-ms=0");
    virtualbus::unplug(1);
    QVERIFY(hid_enumerate(0, 0) == nullptr);
    QVERIFY(hid_open_path("virtual:1") == nullptr);
    QCOMPARE(write(device, host::report({})), -1);
    QCOMPARE(readTimeout(device, 0).result, 64);
    QCOMPARE(readTimeout(device, 1000).result, -1);
    unsigned char buffer[64];
    QCOMPARE(hid_read(device, buffer, sizeof buffer), -1);
    hid_close(device);
}

void TestVirtualReports::writes()
{
    const OpenScript unit;
    const QByteArray report = host::report({{1, 0x80}, {64, 7}});
    QCOMPARE(write(unit.device, report), 65);
    QCOMPARE(write(unit.device, report.left(3)), 3);
    QCOMPARE(hid_write(unit.device, nullptr, 0), -1);
    virtualbus::failNextWrites(unit.number, 2);
    QCOMPARE(write(unit.device, report), -1);
    QCOMPARE(write(unit.device, report), -1);
    QCOMPARE(write(unit.device, report), 65);
    const Bytes bytes = bytesOf(report);
    QVERIFY(unit.script->written == (std::vector{bytes, {bytes[0], bytes[1], bytes[2]}, bytes}));
    QCOMPARE(virtualbus::writesTo(1).size(), std::size_t(6));
}

void TestVirtualReports::unitThatTakesNothingBlocksTheWriter()
{
    hid_device* const device = openUnit("hb4,fault=takes-nothing:30");
    QElapsedTimer timer;
    timer.start();
    std::atomic<bool> done{false};
    std::thread disturber([&] {
        while (!done)
            virtualbus::change([] {}); // what others do on the bus ends no write
    });
    const int result = write(device, host::report({}));
    const qint64 elapsed = timer.elapsed();
    done = true;
    disturber.join();
    QCOMPARE(result, -1);
    QVERIFY(elapsed >= 30); // a slow machine only adds to it
    QVERIFY(virtualbus::unit(1).errors.empty());
}

void TestVirtualReports::blockedWriterKeepsNobodyWaiting()
{
    const OpenScript unit;
    virtualbus::change([&] { unit.script->receipt = {false, 2000000000}; });
    unit.script->sayStatus(0);
    int result = 99;
    std::thread writer([&] { result = write(unit.device, host::report({})); });
    QTRY_VERIFY(unit.script->keepsSomebodyWaiting());
    const int read = readTimeout(unit.device, 1000).result;
    virtualbus::unplug(unit.number);
    writer.join();
    QCOMPARE(read, 64);
    QCOMPARE(result, -1);
}

void TestVirtualReports::readerAndWriterInTwoThreads()
{
    hid_device* const device = openUnit("plt70,period-ms=1,install-ms=20,repeats-outcome=yes");
    const QByteArray image = imageOf(60000);
    std::atomic<char> status{0}; // repeated: a reader kept from running for 30 ms misses a single report
    std::thread reader([&] {
        const QDeadlineTimer limit(limits::hang());
        while (!limit.hasExpired() && (status & 0xF0) != 0xF0)
            if (const Read read = readTimeout(device, 100); read.result == 64)
                status = read.bytes.at(60);
    });
    QCOMPARE(write(device, host::request(host::players, host::digestOf(image))), 65);
    QTRY_COMPARE(status.load(), '\x95');
    int written = 0;
    for (const QByteArray& report : host::packets(host::players, image))
        written += write(device, report) == 65;
    reader.join();
    QCOMPARE(written, 1001);
    QCOMPARE(status.load(), '\xF5');
    const virtualbus::UnitView view = virtualbus::unit(1);
    QVERIFY(view.errors.empty());
    QVERIFY(view.verdict == virtualunit::Verdict::Installed);
    QVERIFY(view.image == std::vector<std::uint8_t>(image.begin(), image.end()));
    QCOMPARE(QString::fromStdString(view.journal.back()), "verdict installed");
}

QTEST_GUILESS_MAIN(TestVirtualReports)
#include "tst_virtualreports.moc"
