#include "tests/support/rows.h"
#include "tests/support/texts.h"
#include "tests/support/transferdesk.h"
#include "update/transferprotocol.h"

#include <QtTest>

namespace {

const QString silentRead = "hid_read_timeout handle=1 length=64 timeout=1 result=0";
const QString statusRead = "hid_read_timeout handle=1 length=64 timeout=1 result=64";
const QString polling = "hid_read_timeout handle=1 length=64 timeout=100 result=0";
const QString writing = "hid_write handle=1 length=65 result=65";

QByteArray zeros(int bytes)
{
    return QByteArray(2 * bytes, '0');
}

void addModels()
{
    QTest::addColumn<UnitType>("type");
    QTest::newRow("older family, first") << UNIT_HB4;
    QTest::newRow("older family, last") << UNIT_LMB2;
    QTest::newRow("player, first") << UNIT_PLT70;
    QTest::newRow("player, last") << UNIT_PLT65;
}

} // namespace

class TestTransfer : public QObject
{
    Q_OBJECT

private slots:
    void request_data();
    void request();
    void requestIsWrittenOnce_data() { addModels(); }
    void requestIsWrittenOnce();
    void acceptance_data() { addModels(); }
    void acceptance();
    void acceptanceBeforeTheRequest();
    void packets_data();
    void packets();
    void anyStatusInTheStream_data();
    void anyStatusInTheStream();
    void largePacketNumber_data();
    void largePacketNumber();
    void progress();
    void endOfTheStream_data() { addModels(); }
    void endOfTheStream();
};

void TestTransfer::request_data()
{
    const QByteArray digestOfAbc = QByteArray("900150983cd24fb0d6963f7d28e17f72").toHex();
    const QByteArray fox = "The quick brown fox jumps over the lazy dog";
    const QByteArray digestOfFox = QByteArray("9e107d9d372bb6826bd81d3542a419d6").toHex();
    const Rows<UnitType, QByteArray, QByteArray> row("type", "image", "report");
    row("older family: command in front", UNIT_HB4, "abc", "0080" + digestOfAbc + zeros(31));
    row("older family: another image", UNIT_HB4, fox, "0080" + digestOfFox + zeros(31));
    row("player: command at 61", UNIT_PLT70, "abc", "0000" + digestOfAbc + zeros(27) + "80000000");
    row("player: another image", UNIT_PLT70, fox, "0000" + digestOfFox + zeros(27) + "80000000");
}

void TestTransfer::request()
{
    QFETCH(UnitType, type);
    QFETCH(QByteArray, image);
    TransferDesk desk(type);
    desk.writeRequest(image);
    QCOMPARE(desk.calls(), (QStringList{silentRead, writing})); // the unit's status is looked at first
    QTEST(hexOf(desk.writes().front()), "report");
    QCOMPARE(desk.phase(), QString("0 0 1 0"));
}

void TestTransfer::requestIsWrittenOnce()
{
    QFETCH(UnitType, type);
    TransferDesk desk(type);
    desk.load(imageOf(200));
    desk.tick(5);
    QCOMPARE(desk.calls(),
             (QStringList{silentRead, writing, silentRead, silentRead, silentRead, silentRead}));
    QCOMPARE(desk.phase(), QString("0 0 1 0"));
}

void TestTransfer::acceptance()
{
    QFETCH(UnitType, type);
    TransferDesk desk(type);
    desk.writeRequest();
    desk.window.bar("progressBarTransfer").setValue(55); // as the download left it
    desk.sayStatus(0x95);
    desk.tick();
    QCOMPARE(desk.phase(), QString("1 0 1 1"));
    QVERIFY(desk.window.bar("progressBarTransfer").isEnabled());
    QCOMPARE(desk.window.bar("progressBarTransfer").value(), 0);
    QVERIFY(desk.window.label("labelTransfer").isEnabled());
    QCOMPARE(desk.window.label("labelTransfer").text(), QString(text::transferInProgress));
    QCOMPARE(desk.calls(),
             (QStringList{silentRead, writing, statusRead, writing})); // a packet in the same tick
    QCOMPARE(hexOf(desk.writes().back()), hexOf(packetsOf(models::of(type), imageOf(200)).front()));
}

/// A report from before the request counts all the same; the request goes out, the stream follows.
void TestTransfer::acceptanceBeforeTheRequest()
{
    TransferDesk desk(UNIT_HB4);
    desk.load(imageOf(200));
    desk.window.bar("progressBarTransfer").setValue(55); // as the download left it
    desk.sayStatus(0x90);
    desk.tick();
    QCOMPARE(desk.phase(), QString("1 0 1 0"));
    QCOMPARE(desk.window.bar("progressBarTransfer").value(), 0);
    QCOMPARE(int{desk.writes().back()[1]}, 0x80);
    desk.tick();
    QCOMPARE(desk.calls(), (QStringList{statusRead, writing, writing}));
    QCOMPARE(hexOf(desk.writes().back()), hexOf(packetsOf(models::hb4, imageOf(200)).front()));
}

void TestTransfer::packets_data()
{
    QTest::addColumn<UnitType>("type");
    QTest::addColumn<int>("size");
    for (const int size : {1, 59, 60, 61, 119, 120, 121, 6000, 15420}) {
        QTest::addRow("older family, %d bytes", size) << UNIT_HB4 << size;
        QTest::addRow("player, %d bytes", size) << UNIT_PLT65 << size;
    }
}

void TestTransfer::packets()
{
    QFETCH(UnitType, type);
    QFETCH(int, size);
    TransferDesk desk(type);
    const QByteArray image = imageOf(size);
    desk.startStream(image);
    const std::vector<Bytes> expected = packetsOf(models::of(type), image);
    for (std::size_t i = 1; i < expected.size(); ++i)
        desk.tick(); // one packet each
    const std::vector<Bytes> written = desk.packets();
    QCOMPARE(written.size(), expected.size());
    for (std::size_t i = 0; i < expected.size(); ++i)
        QCOMPARE(hexOf(written[i]), hexOf(expected[i]));
    QCOMPARE(desk.phase(), QString("0 1 1 0"));
}

void TestTransfer::anyStatusInTheStream_data()
{
    QTest::addColumn<UnitType>("type");
    QTest::addColumn<int>("status");
    for (int byte = 0; byte <= 0xFF; ++byte) {
        QTest::addRow("older family, 0x%02X", byte) << UNIT_HB4 << byte;
        QTest::addRow("player, 0x%02X", byte) << UNIT_PLT65 << byte;
    }
}

void TestTransfer::anyStatusInTheStream()
{
    QFETCH(UnitType, type);
    QFETCH(int, status);
    const QByteArray image = imageOf(200);
    TransferDesk desk(type);
    desk.startStream(image);
    desk.sayStatus(status);
    desk.tick(3);
    QVERIFY(desk.packets() == packetsOf(models::of(type), image));
    QCOMPARE(desk.calls().filter("hid_read").size(), 2); // both before it
    QCOMPARE(desk.window.boxes.lines(), QStringList{});
}

void TestTransfer::largePacketNumber_data()
{
    const Rows<UnitType, int, int, QByteArray> row("type", "left", "headerAt", "header");
    row("older family, full packet", UNIT_HB4, 61, 1, "00012345");
    row("player, full packet", UNIT_PLT65, 61, 61, "00012345");
    row("older family, final packet: low 16 bits", UNIT_HB4, 10, 1, "d00a2345");
    row("player, final packet: low 16 bits", UNIT_PLT65, 10, 61, "d00a2345");
}

void TestTransfer::largePacketNumber()
{
    QFETCH(UnitType, type);
    QFETCH(int, left);
    QFETCH(int, headerAt);
    TransferDesk desk(type);
    const int before = 74564; // packets already sent
    desk.startStream(imageOf(before * 60 + left));
    desk.skipTo(before);
    desk.tick();
    QTEST(hexOf(desk.writes().back()).mid(2 * headerAt, 8), "header");
}

void TestTransfer::progress()
{
    TransferDesk desk(UNIT_HB4);
    desk.startStream(imageOf(241)); // of bytes, not of packets, of which there are five
    for (const int percent : {0, 24, 49, 74, 99}) {
        QCOMPARE(desk.window.bar("progressBarTransfer").value(), percent);
        desk.tick();
    }
    QCOMPARE(desk.phase(), QString("0 1 1 0"));
}

void TestTransfer::endOfTheStream()
{
    QFETCH(UnitType, type);
    TransferDesk desk(type);
    desk.startStream(imageOf(59));
    QCOMPARE(desk.phase(), QString("0 1 1 0"));
    const QStringList before = desk.window.controls();
    desk.tick(2);
    QCOMPARE(desk.calls(), (QStringList{silentRead, writing, statusRead, writing, polling, polling}));
    QCOMPARE(desk.window.controls(), before); // the display waits for the unit's verdict
}

QTEST_MAIN(TestTransfer)
#include "tst_transfer.moc"
