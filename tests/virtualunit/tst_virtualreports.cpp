#include "tests/support/scriptedunit.h"
#include "tests/virtualunit/hidcalls.h"

#include <QElapsedTimer>
#include <QTest>

#include <thread>

using hidcalls::openFirst;
using hidcalls::Read;
using hidcalls::readTimeout;
using hidcalls::write;

/// Input and output reports through hidapi's interface, as a caller sees them.
class TestVirtualReports : public QObject
{
    Q_OBJECT

private slots:
    void init() { virtualbus::clear(); }
    void cleanup() { virtualbus::clear(); }

    void versionReportComesByItself();
    void newest32ReportsAreKept();
    void floodIsPacedByItsReader();
    void timeOuts_data();
    void timeOuts();
    void timeOutIsNotShorterThanAsked();
    void zeroLengthReportReadsAsNothing();
    void shortBufferCutsTheReport();
    void nonblockingRead();
    void blockingReadWaitsForAReport();
    void unpluggedDeviceGivesItsQueueFirst();
    void unplugWakesABlockedRead();
    void unitVanishesAtAWrite();
    void closeWakesABlockedRead();
    void writes();
    void unitThatTakesNothingBlocksTheWriter();
    void blockedWriterKeepsNobodyWaiting();
    void readerAndWriterInTwoThreads();
};

void TestVirtualReports::versionReportComesByItself()
{
    virtualbus::attach(host::options("panel2v,version=23,period-ms=0"));
    const Read read = readTimeout(openFirst(), 1000);
    QCOMPARE(read.result, 64);
    QCOMPARE(read.bytes.at(62), char(23));
}

void TestVirtualReports::newest32ReportsAreKept()
{
    const auto script = std::make_shared<ScriptedUnit>();
    virtualbus::attach({}, script);
    hid_device* device = openFirst();
    virtualbus::change([&] {
        for (std::uint8_t i = 0; i < 40; ++i)
            script->input.push_back(std::vector<std::uint8_t>(64, i));
    });
    for (char i = 8; i < 40; ++i)
        QCOMPARE(readTimeout(device, 0).bytes, QByteArray(64, i));
    QCOMPARE(readTimeout(device, 0).result, 0);
}

/// However fast it reads, so many reports wait, and no more.
void TestVirtualReports::floodIsPacedByItsReader()
{
    virtualunit::Options options = host::options("hb4,period-ms=0");
    options.flood = 3;
    const int unit = virtualbus::attach(options);
    hid_device* device = openFirst();
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
    virtualbus::attach({}, std::make_shared<ScriptedUnit>());
    QCOMPARE(readTimeout(openFirst(), milliseconds).result, 0);
    const virtualbus::Call call = virtualbus::callsOf("hid_read_timeout").at(0);
    QVERIFY(call.timeout == milliseconds);
    QVERIFY(call.result == 0);
}

void TestVirtualReports::timeOutIsNotShorterThanAsked()
{
    virtualbus::attach({}, std::make_shared<ScriptedUnit>());
    hid_device* device = openFirst();
    for (int i = 0; i < 20; ++i) {
        QElapsedTimer timer;
        timer.start();
        readTimeout(device, 2);
        QVERIFY(timer.nsecsElapsed() >= 2000000); // a slow machine only adds to it
    }
}

void TestVirtualReports::zeroLengthReportReadsAsNothing()
{
    const auto script = std::make_shared<ScriptedUnit>();
    script->input = {{}, {7}};
    virtualbus::attach({}, script);
    hid_device* device = openFirst();
    QCOMPARE(readTimeout(device, -1).result, 0);
    QCOMPARE(readTimeout(device, -1).bytes, QByteArray(1, 7));
}

void TestVirtualReports::shortBufferCutsTheReport()
{
    const auto script = std::make_shared<ScriptedUnit>();
    script->input = {{1, 2, 3, 4}, {5}};
    virtualbus::attach({}, script);
    hid_device* device = openFirst();
    unsigned char buffer[3] = {9, 9, 9};
    QCOMPARE(hid_read(device, buffer, 2), 2);
    QCOMPARE(QByteArray(reinterpret_cast<char*>(buffer), 3), QByteArray("\1\2\11"));
    QCOMPARE(hid_read(device, buffer, 2), 1);
}

void TestVirtualReports::nonblockingRead()
{
    const auto script = std::make_shared<ScriptedUnit>();
    virtualbus::attach({}, script);
    hid_device* device = openFirst();
    QCOMPARE(hid_set_nonblocking(device, 1), 0);
    unsigned char buffer[64];
    QCOMPARE(hid_read(device, buffer, sizeof buffer), 0);
    virtualbus::change([&] { script->input.push_back({1}); });
    QCOMPARE(hid_read(device, buffer, sizeof buffer), 1);
}

void TestVirtualReports::blockingReadWaitsForAReport()
{
    const auto script = std::make_shared<ScriptedUnit>();
    virtualbus::attach({}, script);
    hid_device* device = openFirst();
    std::atomic<int> result{99};
    std::thread reader([&] {
        unsigned char buffer[64];
        result = hid_read(device, buffer, sizeof buffer);
    });
    QTRY_VERIFY(script->keepsSomebodyWaiting());
    QCOMPARE(result.load(), 99);
    virtualbus::change([&] { script->input.push_back({1, 2, 3}); });
    reader.join();
    QCOMPARE(result.load(), 3);
}

void TestVirtualReports::unpluggedDeviceGivesItsQueueFirst()
{
    const int unit = virtualbus::attach(host::options("hb4,period-ms=0"));
    hid_device* device = openFirst();
    virtualbus::unplug(unit);
    QVERIFY(hid_enumerate(0, 0) == nullptr);
    QVERIFY(hid_open_path("virtual:1") == nullptr);
    QCOMPARE(write(device, host::report({})), -1);
    QCOMPARE(readTimeout(device, 0).result, 64);
    QCOMPARE(readTimeout(device, 1000).result, -1);
    unsigned char buffer[64];
    QCOMPARE(hid_read(device, buffer, sizeof buffer), -1);
    hid_close(device);
}

void TestVirtualReports::unplugWakesABlockedRead()
{
    const auto script = std::make_shared<ScriptedUnit>();
    const int unit = virtualbus::attach({}, script);
    hid_device* device = openFirst();
    int result = 99;
    std::thread reader([&] { result = readTimeout(device, -1).result; });
    QTRY_VERIFY(script->keepsSomebodyWaiting());
    virtualbus::unplug(unit);
    reader.join();
    QCOMPARE(result, -1);
}

void TestVirtualReports::unitVanishesAtAWrite()
{
    virtualbus::attach(host::options("hb4,period-ms=0,fault=unplugged-at:2"));
    hid_device* device = openFirst();
    QCOMPARE(write(device, host::request(host::older, host::digestOf(""))), 65);
    QCOMPARE(write(device, host::finalPacket(host::older, 1, "")), 65); // the last one that it takes
    QCOMPARE(write(device, host::finalPacket(host::older, 1, "")), -1);
    QCOMPARE(readTimeout(device, 0).bytes.at(0), '\x05');
    QCOMPARE(readTimeout(device, 0).bytes.at(0), '\x95');
    QCOMPARE(readTimeout(device, 1000).result, -1);
    QVERIFY(hid_enumerate(0, 0) == nullptr);
}

void TestVirtualReports::closeWakesABlockedRead()
{
    const auto script = std::make_shared<ScriptedUnit>();
    virtualbus::attach({}, script);
    hid_device* device = openFirst();
    int result = 99;
    std::thread reader([&] { result = readTimeout(device, -1).result; });
    QTRY_VERIFY(script->keepsSomebodyWaiting());
    hid_close(device);
    reader.join();
    QCOMPARE(result, -1);
    QCOMPARE(script->closings, 1);
}

void TestVirtualReports::writes()
{
    const auto script = std::make_shared<ScriptedUnit>();
    const int number = virtualbus::attach({}, script);
    hid_device* device = openFirst();
    const QByteArray report = host::report({{1, 0x80}, {64, 7}});
    QCOMPARE(write(device, report), 65);
    QCOMPARE(write(device, report.left(3)), 3);
    QCOMPARE(hid_write(device, nullptr, 0), -1);
    virtualbus::failNextWrites(number, 2);
    QCOMPARE(write(device, report), -1);
    QCOMPARE(write(device, report), -1);
    QCOMPARE(write(device, report), 65);
    const std::vector<std::uint8_t> bytes(report.begin(), report.end());
    QVERIFY(script->written == (std::vector{bytes, {bytes[0], bytes[1], bytes[2]}, bytes}));
    QCOMPARE(virtualbus::writesTo(1).size(), std::size_t(6));
}

void TestVirtualReports::unitThatTakesNothingBlocksTheWriter()
{
    const int unit = virtualbus::attach(host::options("hb4,fault=takes-nothing:30"));
    hid_device* device = openFirst();
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
    QVERIFY(virtualbus::unit(unit).errors.empty());
}

void TestVirtualReports::blockedWriterKeepsNobodyWaiting()
{
    const auto script = std::make_shared<ScriptedUnit>();
    script->receipt = {false, 2000000000};
    script->input = {std::vector<std::uint8_t>(64)};
    const int unit = virtualbus::attach({}, script);
    hid_device* device = openFirst();
    int result = 99;
    std::thread writer([&] { result = write(device, host::report({})); });
    QTRY_VERIFY(script->keepsSomebodyWaiting());
    const int read = readTimeout(device, 1000).result;
    virtualbus::unplug(unit);
    writer.join();
    QCOMPARE(read, 64);
    QCOMPARE(result, -1);
}

void TestVirtualReports::readerAndWriterInTwoThreads()
{
    const int unit = virtualbus::attach(host::options("plt70,period-ms=1,install-ms=20,repeats-outcome=yes"));
    hid_device* device = openFirst();
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
    const virtualbus::UnitView view = virtualbus::unit(unit);
    QVERIFY(view.errors.empty());
    QVERIFY(view.verdict == virtualunit::Verdict::Installed);
    QVERIFY(view.image == std::vector<std::uint8_t>(image.begin(), image.end()));
    QCOMPARE(QString::fromStdString(view.journal.back()), "verdict installed");
}

QTEST_GUILESS_MAIN(TestVirtualReports)
#include "tst_virtualreports.moc"
