#include "log/logdownloader.h"
#include "net/updatechecker.h"
#include "tests/support/boxlines.h"
#include "tests/support/inside.h"
#include "tests/support/scriptedunit.h"
#include "tests/support/testwindow.h"
#include "tests/support/ticks.h"

#include <QSignalSpy>
#include <QtTest>

#include <hidapi.h>

namespace {

/// Has the window try this unit as a model of `type`. Returns the result.
int find(TestWindow& window, UnitType type, std::string path)
{
    hid_device_info record{};
    record.path = path.data();
    window.state().unitType = type;
    return inside::findDevice(*window, &record);
}

} // namespace

class TestIdentification : public QObject
{
    Q_OBJECT

private slots:
    void init() { placeServiceFile(); }

    void callsInOrder();
    void model_data();
    void model();
    void anyReport_data();
    void anyReport();
    void oldestReportCounts();
    void silentUnit();
    void shortReport_data();
    void shortReport();
    void failedRead();
    void whatIsToldWhen();
    void typeWithoutModel();
    void noRecord();
    void failedOpening();
};

void TestIdentification::callsInOrder()
{
    TestWindow window;
    const auto unit = ScriptedUnit::plugIn(UNIT_PLT65);
    unit->say(firstReport(1, 2));
    QCOMPARE(find(window, UNIT_PLT65, unit->path()), 0);
    QCOMPARE(callsToUnits(), (QStringList{"hid_open_path path=virtual:1 result=1",
                                          "hid_get_serial_number_string handle=1 length=16 result=0",
                                          "hid_read_timeout handle=1 length=64 timeout=1000 result=64"}));
}

/// Also a deck by itself.
void TestIdentification::model_data()
{
    QTest::addColumn<UnitType>("type");
    QTest::addColumn<int>("version");
    for (const models::Model& model : models::all)
        QTest::newRow(model.option) << model.type << (model.versionByte == 62 ? 0x17 : 0x20);
}

void TestIdentification::model()
{
    QFETCH(UnitType, type);
    QFETCH(int, version);
    TestWindow window;
    const auto unit = ScriptedUnit::plugIn(type);
    unit->say(firstReport(0x17, 0x20));
    QCOMPARE(find(window, type, unit->path()), 0);
    QCOMPARE(int{window.state().currentVersion}, version);
    QCOMPARE(int{inside::of(window.checker()).curVersionByte}, version);
    QCOMPARE(inside::of(window.checker()).curVersion, QString::number(version));
    QCOMPARE(inside::of(window.checker()).unitType, type);
    QCOMPARE(window.boxes.lines(), QStringList{boxline::connected(type)});
}

void TestIdentification::anyReport_data()
{
    QTest::addColumn<UnitType>("type");
    QTest::addColumn<int>("byte");
    for (int byte = 0; byte <= 0xFF; ++byte)
        for (const UnitType type : {UNIT_HB4, UNIT_PLT65})
            QTest::addRow("%s, 0x%02X", models::of(type).option, byte) << type << byte;
}

/// Whatever its status says.
void TestIdentification::anyReport()
{
    QFETCH(UnitType, type);
    QFETCH(int, byte);
    TestWindow window;
    ScriptedUnit::plugIn(type)->say(Bytes(64, static_cast<std::uint8_t>(byte)));
    window->connectSlot();
    QCOMPARE(int{window.state().currentVersion}, byte);
    QCOMPARE(window.boxes.lines(), QStringList{boxline::connected(type)});
}

void TestIdentification::oldestReportCounts()
{
    TestWindow window;
    const auto unit = ScriptedUnit::plugIn(UNIT_HB4);
    unit->say(firstReport(0, 255));
    unit->say(firstReport(0, 4));
    QCOMPARE(find(window, UNIT_HB4, unit->path()), 0);
    QCOMPARE(int{window.state().currentVersion}, 255);
    QCOMPARE(inside::of(window.checker()).curVersion, QString("255"));
}

void TestIdentification::silentUnit()
{
    TestWindow window;
    const auto unit = ScriptedUnit::plugIn(UNIT_HB4);
    window.state().currentVersion = 7;
    QCOMPARE(find(window, UNIT_HB4, unit->path()), 0);
    QCOMPARE(callsToUnits().filter("hid_read_timeout"),
             QStringList{"hid_read_timeout handle=1 length=64 timeout=1000 result=0"});
    QCOMPARE(int{window.state().currentVersion}, 0);
    QCOMPARE(inside::of(window.checker()).curVersion, QString("0"));
    QCOMPARE(window.boxes.lines(), QStringList{boxline::connected(UNIT_HB4)});
}

void TestIdentification::shortReport_data()
{
    QTest::addColumn<int>("length");
    QTest::newRow("no byte at all") << 0;
    QTest::newRow("first byte only") << 1;
    QTest::newRow("all but the version byte") << 63;
}

void TestIdentification::shortReport()
{
    QFETCH(int, length);
    TestWindow window;
    const auto unit = ScriptedUnit::plugIn(UNIT_HB4);
    window.state().currentVersion = 7;
    unit->say(Bytes(static_cast<std::size_t>(length), 0x21));
    QCOMPARE(find(window, UNIT_HB4, unit->path()), 0);
    QCOMPARE(int{window.state().currentVersion}, 0);
    QCOMPARE(inside::of(window.checker()).curVersion, QString("0"));
}

void TestIdentification::failedRead()
{
    TestWindow window;
    const auto unit = ScriptedUnit::plugIn(UNIT_HB4);
    virtualbus::failReads(unit->number, true);
    window.state().currentVersion = 7;
    const QSignalSpy checked(&window.checker(), SIGNAL(newUpdateFileDownloaded(bool)));
    expectDiagnostic("Can't read current version\n");
    QCOMPARE(find(window, UNIT_HB4, unit->path()), 0);
    QCOMPARE(int{window.state().currentVersion}, 7);
    QVERIFY(inside::of(window.checker()).curVersion.isNull());
    QCOMPARE(int{inside::of(window.checker()).curVersionByte}, 0);
    QVERIFY(!window.button("connect_button").isEnabled());
    QCOMPARE(window.boxes.lines(), QStringList{boxline::connected(UNIT_HB4)});
    QCOMPARE(checked.count(), 1);
}

/// The checker knows the version before the box; everything else waits until the box is dismissed.
void TestIdentification::whatIsToldWhen()
{
    TestWindow window;
    const auto unit = ScriptedUnit::plugIn(UNIT_PANEL4V);
    unit->say(firstReport(0x17, 0x20));
    const QSignalSpy checked(&window.checker(), SIGNAL(newUpdateFileDownloaded(bool)));
    UpdateChecker& checker = window.checker();
    LogDownloader& downloader = window.downloader();
    QStringList underTheBox;
    window.boxes.whileOpen = [&](QMessageBox&) {
        underTheBox = QStringList{
            window.button("connect_button").isEnabled() ? "Connect enabled" : "Connect disabled",
            inside::of(checker).curVersion,
            inside::of(checker).unitType == UNIT_PANEL4V ? "model told" : "model not told",
            inside::of(downloader).device != nullptr ? "handle told" : "handle not told",
            QString::number(checked.count()),
        };
    };
    bool toldBeforeTheCheck = false;
    connect(&checker, &UpdateChecker::newUpdateFileDownloaded,
            [&] { toldBeforeTheCheck = inside::of(downloader).device != nullptr; });
    QCOMPARE(find(window, UNIT_PANEL4V, unit->path()), 0);
    QCOMPARE(underTheBox, (QStringList{"Connect disabled", "23", "model not told", "handle not told", "0"}));
    QCOMPARE(inside::of(checker).unitType, UNIT_PANEL4V);
    QVERIFY(toldBeforeTheCheck);
    QCOMPARE(inside::of(downloader).device, window.state().device);
    QCOMPARE(inside::of(downloader).unitType, UNIT_PANEL4V);
    QCOMPARE(checked.count(), 1);
}

void TestIdentification::typeWithoutModel()
{
    TestWindow window;
    const auto unit = ScriptedUnit::plugIn(UNIT_HB4);
    unit->say(firstReport(1, 2));
    const QSignalSpy checked(&window.checker(), SIGNAL(newUpdateFileDownloaded(bool)));
    QCOMPARE(find(window, static_cast<UnitType>(models::count), unit->path()), 0);
    passTicks(20); // a box would have been seen by now
    QCOMPARE(window.boxes.lines(), QStringList{});
    QCOMPARE(int{window.state().currentVersion}, 2);
    QCOMPARE(checked.count(), 1);
}

void TestIdentification::noRecord()
{
    TestWindow window;
    QCOMPARE(inside::findDevice(*window, nullptr), 1);
    QCOMPARE(callsToUnits(), QStringList{});
    QCOMPARE(window.boxes.lines(), QStringList{});
    QVERIFY(window.button("connect_button").isEnabled());
}

void TestIdentification::failedOpening()
{
    TestWindow window;
    const QSignalSpy checked(&window.checker(), SIGNAL(newUpdateFileDownloaded(bool)));
    QCOMPARE(find(window, UNIT_HB4, "virtual:99"), 1);
    QCOMPARE(callsToUnits(), QStringList{"hid_open_path path=virtual:99 result=0"});
    QCOMPARE(window.boxes.lines(), QStringList{});
    QVERIFY(window.button("connect_button").isEnabled());
    QCOMPARE(checked.count(), 0);
}

QTEST_MAIN(TestIdentification)
#include "tst_identification.moc"
