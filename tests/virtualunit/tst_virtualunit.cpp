#include "tests/virtualunit/host.h"

#include <QTest>

using host::Bytes;
using host::Host;

/// What a host sees of a unit that it finds, updates and follows, with nothing wrong on either side.
class TestVirtualUnit : public QObject
{
    Q_OBJECT

private slots:
    void models_data();
    void models();
    void firstReportComesAtOpening();
    void reportsComeAtMultiplesOfThePeriod();
    void twoDecksReportInTheSameMillisecond();
    void quietUnitReportsChangesOnly();
    void transfers_data();
    void transfers();
    void acceptedIsRepeatedUntilTheFirstPacket();
    void outcomeIsToldOnce();
    void outcomeIsRepeatedWhenAsked();
    void installationTakesItsTime();
    void shortInstallationIsStillTold();
    void acceptanceTakesItsTime();
    void numberOfALongImageGoesOnBehind16Bits();
    void secondTransferStartsFromNothing();
    void transferOutlivesClosing();
};

void TestVirtualUnit::models_data()
{
    QTest::addColumn<UnitType>("type");
    for (const models::Model& model : models::all)
        QTest::newRow(model.option) << model.type;
}

void TestVirtualUnit::models()
{
    QFETCH(UnitType, type);
    const models::Model& model = models::of(type);
    Host host(QString(model.option) + ",version=23");
    QVERIFY(host.opened);
    QCOMPARE(int(findUnitModel(host.unit.settings().type)->productId), model.productId);
    QCOMPARE(virtualunit::productOf(host.unit.settings()), std::optional<std::string>(model.product()));
    Bytes expected(64, '\x55');
    expected[model.versionByte] = 23;
    expected[model.layout.headerOffset] = 5; // idle; the low half has no meaning
    QCOMPARE(host.read(), QList<Bytes>{expected});
}

void TestVirtualUnit::firstReportComesAtOpening()
{
    Host host("hb4,period-ms=100");
    QCOMPARE(host.read().size(), 1);
    QCOMPARE(host.read().size(), 0);
    QCOMPARE(host.unit.nextEventAt(), 1100);
    host.unit.close(host.now);
    host.wait(1000);
    QCOMPARE(host.read().size(), 0);
    QVERIFY(host.unit.open(host.now));
    QCOMPARE(host.read().size(), 1);
}

void TestVirtualUnit::reportsComeAtMultiplesOfThePeriod()
{
    Host host("hb4,period-ms=30"); // opened at 1000
    host.wait(19);
    QCOMPARE(host.read().size(), 1);
    host.wait(1); // 1020
    QCOMPARE(host.read().size(), 1);
    host.wait(90);
    QCOMPARE(host.read().size(), 3);
}

void TestVirtualUnit::twoDecksReportInTheSameMillisecond()
{
    Host left("trk300-left"); // opened at 1000
    virtualunit::VirtualUnit right(host::options("trk300-right"));
    QVERIFY(right.open(1003));
    left.read();
    QVERIFY(right.takeInput(1003));
    QCOMPARE(right.nextEventAt(), left.unit.nextEventAt());
}

void TestVirtualUnit::quietUnitReportsChangesOnly()
{
    Host host("hb4,period-ms=0");
    QCOMPARE(host.read().size(), 1);
    host.wait(5000);
    QCOMPARE(host.read().size(), 0);
    const Bytes image = imageOf(10);
    host.write(host::request(host::older, host::digestOf(image)));
    QCOMPARE(host.statuses(0), "9");
    host.write(host::finalPacket(host::older, 1, image));
    QCOMPARE(host.statuses(0), "e");
    QCOMPARE(host.statuses(49), "");
    QCOMPARE(host.statuses(1), "f");
    QCOMPARE(host.statuses(5000), "");
}

void TestVirtualUnit::transfers_data()
{
    QTest::addColumn<UnitType>("type");
    QTest::addColumn<int>("size");
    QTest::addColumn<int>("packets");
    struct
    {
        int size;
        int packets;
    } const sizes[] = {{1, 1}, {59, 1}, {60, 2}, {61, 2}, {119, 2}, {120, 3}, {121, 3}, {6000, 101}};
    for (const auto& [size, packets] : sizes) {
        QTest::addRow("header first, %d bytes", size) << host::older.type << size << packets;
        QTest::addRow("data first, %d bytes", size) << host::players.type << size << packets;
    }
}

void TestVirtualUnit::transfers()
{
    QFETCH(UnitType, type);
    const models::Model& family = models::of(type);
    QFETCH(int, size);
    QFETCH(int, packets);
    const Bytes image = imageOf(size);
    Host host(family.option);
    QCOMPARE(host.statuses(0), "0");
    host.write(host::request(family, host::digestOf(image)));
    QCOMPARE(host.statuses(20), "9");
    const QList<Bytes> reports = host::packets(family, image);
    QCOMPARE(reports.size(), packets);
    for (const Bytes& report : reports)
        QVERIFY(host.write(report).taken);
    QCOMPARE(host.statuses(200), "ef0");
    QCOMPARE(host.image(), image);
    QCOMPARE(host.unit.verdict(), virtualunit::Verdict::Installed);
    const QStringList expected{"opened",     "request digest=" + host::digestOf(image),
                               "accepted",   "image-complete size=" + QString::number(size),
                               "installing", "verdict installed"};
    QCOMPARE(host.journal(), expected);
}

void TestVirtualUnit::acceptedIsRepeatedUntilTheFirstPacket()
{
    Host host("hb4");
    host.read();
    host.write(host::request(host::older, host::digestOf(imageOf(60))));
    host.wait(400);
    const QList<Bytes> reports = host.read();
    QCOMPARE(reports.size(), 50);
    for (const Bytes& report : reports)
        QCOMPARE(report.at(0), '\x95');
    host.write(host::packets(host::older, imageOf(60)).first());
    QCOMPARE(host.statuses(400), "0");
}

void TestVirtualUnit::outcomeIsToldOnce()
{
    Host host("hb4,fault=refuses-timeout");
    host.read();
    host.write(host::request(host::older, host::digestOf("")));
    host.wait(800);
    int told = 0;
    for (const Bytes& report : host.read())
        told += report.at(0) == '\xA5';
    QCOMPARE(told, 1);
}

void TestVirtualUnit::outcomeIsRepeatedWhenAsked()
{
    Host host("hb4,fault=refuses-timeout,repeats-outcome=yes");
    host.read();
    host.write(host::request(host::older, host::digestOf("")));
    QCOMPARE(host.statuses(800), "a");
}

void TestVirtualUnit::installationTakesItsTime()
{
    Host host("plt70,install-ms=3000");
    host.write(host::request(host::players, host::digestOf("")));
    host.write(host::finalPacket(host::players, 1, ""));
    host.read();
    QCOMPARE(host.statuses(2999), "e");
    QCOMPARE(host.unit.verdict(), virtualunit::Verdict::Installing);
    QCOMPARE(host.statuses(20), "f0");
}

void TestVirtualUnit::shortInstallationIsStillTold()
{
    Host host("plt70,install-ms=0");
    host.read();
    host.write(host::request(host::players, host::digestOf("")));
    host.write(host::finalPacket(host::players, 1, ""));
    QCOMPARE(host.statuses(100), "ef0");
}

void TestVirtualUnit::acceptanceTakesItsTime()
{
    Host host("hb4,accept-ms=500");
    host.write(host::request(host::older, host::digestOf("")));
    QCOMPARE(host.statuses(499), "0");
    QCOMPARE(host.statuses(9), "9");
}

void TestVirtualUnit::numberOfALongImageGoesOnBehind16Bits()
{
    const Bytes image = imageOf(65536 * 60 + 1);
    const QList<Bytes> reports = host::packets(host::players, image);
    QCOMPARE(reports.at(65535).mid(61).toHex(), Bytes("00010000")); // number 65536
    QCOMPARE(reports.last().mid(61).toHex(), Bytes("d0010001"));    // number 65537, 16 bits of it
    Host host("plt70");
    host.write(host::request(host::players, host::digestOf(image)));
    for (const Bytes& report : reports)
        host.write(report);
    QCOMPARE(host.errors(), QStringList());
    QVERIFY(host.image() == image);
    QCOMPARE(host.unit.verdict(), virtualunit::Verdict::Installing);
}

void TestVirtualUnit::secondTransferStartsFromNothing()
{
    Host host("hb4");
    for (const int size : {200, 70}) {
        const Bytes image = imageOf(size);
        host.write(host::request(host::older, host::digestOf(image)));
        for (const Bytes& report : host::packets(host::older, image))
            host.write(report);
        host.wait(100);
        host.read();
        QCOMPARE(host.image(), image);
        QCOMPARE(host.unit.verdict(), virtualunit::Verdict::Installed);
    }
    QCOMPARE(host.errors(), QStringList());
}

void TestVirtualUnit::transferOutlivesClosing()
{
    Host host("hb4,install-ms=500");
    host.write(host::request(host::older, host::digestOf("")));
    host.write(host::finalPacket(host::older, 1, ""));
    host.unit.close(host.now);
    host.wait(200);
    QVERIFY(host.unit.open(host.now));
    QCOMPARE(host.statuses(400), "ef0");
}

QTEST_APPLESS_MAIN(TestVirtualUnit)
#include "tst_virtualunit.moc"
