#include "log/logdownloader.h"
#include "net/updatechecker.h"
#include "tests/support/scriptedunit.h"
#include "tests/support/testwindow.h"
#include "tests/support/ticks.h"

#include <QSignalSpy>
#include <QtTest>

#include <hidapi.h>

namespace {

constexpr int notGiven = -1; // of a result

/// A report as a unit sends it by itself: both places where a model may keep its version are told apart.
Bytes firstReport(std::uint8_t byte62, std::uint8_t byte63)
{
    Bytes report(64, 0x33);
    report[62] = byte62;
    report[63] = byte63;
    return report;
}

/// The calls since the enumeration, each as one line.
QStringList callLines()
{
    QStringList lines;
    for (const virtualbus::Call& call : virtualbus::calls())
        if (!call.function.starts_with("hid_enumerate") && !call.function.starts_with("hid_free"))
            lines += QString::fromStdString(lineOf(call));
    return lines;
}

} // namespace

class TestIdentification : public QObject
{
    Q_OBJECT

private slots:
    void init() { placeServiceFile(); }

    void callsInOrder();
    void version_data();
    void version();
    void oldestReportCounts();
    void silentUnit();
    void shortReport_data();
    void shortReport();
    void failedRead();
    void whatIsToldWhen();
    void message_data();
    void message();
    void typeWithoutModel();
    void noRecord();
    void failedOpening();

private:
    /// Has the window try this unit as a model of `type`. Returns the result.
    static int find(TestWindow& window, UnitType type, const std::string& path);
};

int TestIdentification::find(TestWindow& window, UnitType type, const std::string& path)
{
    std::string ownPath = path;
    hid_device_info record{};
    record.path = ownPath.data();
    int result = notGiven;
    window->unitType = type;
    window->findDevice(&record, result);
    return result;
}

void TestIdentification::callsInOrder()
{
    TestWindow window;
    const auto unit = ScriptedUnit::plugIn(UNIT_PLT65);
    unit->say(firstReport(1, 2));
    QCOMPARE(find(window, UNIT_PLT65, unit->path()), 0);
    QCOMPARE(callLines(), (QStringList{"hid_open_path path=virtual:1 result=1",
                                       "hid_get_serial_number_string handle=1 length=16 result=0",
                                       "hid_read_timeout handle=1 length=64 timeout=1000 result=64"}));
}

void TestIdentification::version_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<int>("version");
    for (const UnitModel& model : unitModels) {
        const bool at62 = model.type >= UNIT_PANEL2V && model.type <= UNIT_DSK6;
        QTest::newRow(model.connectedMessage) << static_cast<int>(model.type) << (at62 ? 0x17 : 0x20);
    }
}

void TestIdentification::version()
{
    QFETCH(int, type);
    QFETCH(int, version);
    TestWindow window;
    const auto unit = ScriptedUnit::plugIn(static_cast<UnitType>(type));
    unit->say(firstReport(0x17, 0x20));
    QCOMPARE(find(window, static_cast<UnitType>(type), unit->path()), 0);
    QCOMPARE(int{window->currentVersion}, version);
    QCOMPARE(int{window->updateChecker->curVersionByte}, version);
    QCOMPARE(window->updateChecker->curVersion, QString::number(version));
    QCOMPARE(static_cast<int>(window->updateChecker->unitType), type);
}

void TestIdentification::oldestReportCounts()
{
    TestWindow window;
    const auto unit = ScriptedUnit::plugIn(UNIT_HB4);
    unit->say(firstReport(0, 255));
    unit->say(firstReport(0, 4));
    QCOMPARE(find(window, UNIT_HB4, unit->path()), 0);
    QCOMPARE(int{window->currentVersion}, 255);
    QCOMPARE(window->updateChecker->curVersion, QString("255"));
}

void TestIdentification::silentUnit()
{
    TestWindow window;
    const auto unit = ScriptedUnit::plugIn(UNIT_HB4);
    window->currentVersion = 7;
    QCOMPARE(find(window, UNIT_HB4, unit->path()), 0);
    QCOMPARE(callLines().filter("hid_read_timeout"),
             QStringList{"hid_read_timeout handle=1 length=64 timeout=1000 result=0"});
    QCOMPARE(int{window->currentVersion}, 0);
    QCOMPARE(window->updateChecker->curVersion, QString("0"));
    QCOMPARE(window.boxes.lines(), QStringList{informationBox("HB4 connected")});
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
    window->currentVersion = 7;
    unit->say(Bytes(static_cast<std::size_t>(length), 0x21));
    QCOMPARE(find(window, UNIT_HB4, unit->path()), 0);
    QCOMPARE(int{window->currentVersion}, 0);
    QCOMPARE(window->updateChecker->curVersion, QString("0"));
}

void TestIdentification::failedRead()
{
    TestWindow window;
    const auto unit = ScriptedUnit::plugIn(UNIT_HB4);
    virtualbus::failReads(unit->number, true);
    window->currentVersion = 7;
    const QSignalSpy checked(window->updateChecker, SIGNAL(newUpdateFileDownloaded(bool)));
    expectDiagnostic("Can't read current version\n");
    QCOMPARE(find(window, UNIT_HB4, unit->path()), 0);
    QCOMPARE(int{window->currentVersion}, 7);
    QVERIFY(window->updateChecker->curVersion.isNull());
    QCOMPARE(int{window->updateChecker->curVersionByte}, 0);
    QVERIFY(!window.button("connect_button").isEnabled());
    QCOMPARE(window.boxes.lines(), QStringList{informationBox("HB4 connected")});
    QCOMPARE(checked.count(), 1);
}

/// The checker knows the version before the box; everything else waits until the box is dismissed.
void TestIdentification::whatIsToldWhen()
{
    TestWindow window;
    const auto unit = ScriptedUnit::plugIn(UNIT_PANEL4V);
    unit->say(firstReport(0x17, 0x20));
    const QSignalSpy checked(window->updateChecker, SIGNAL(newUpdateFileDownloaded(bool)));
    UpdateChecker& checker = *window->updateChecker;
    LogDownloader& downloader = *window->logDownloader;
    QStringList underTheBox;
    window.boxes.whileOpen = [&](QMessageBox&) {
        underTheBox = QStringList{
            window.button("connect_button").isEnabled() ? "Connect enabled" : "Connect disabled",
            checker.curVersion,
            checker.unitType == UNIT_PANEL4V ? "model told" : "model not told",
            downloader.device != nullptr ? "handle told" : "handle not told",
            QString::number(checked.count()),
        };
    };
    bool toldBeforeTheCheck = false;
    connect(&checker, &UpdateChecker::newUpdateFileDownloaded,
            [&] { toldBeforeTheCheck = downloader.device != nullptr; });
    QCOMPARE(find(window, UNIT_PANEL4V, unit->path()), 0);
    QCOMPARE(underTheBox, (QStringList{"Connect disabled", "23", "model not told", "handle not told", "0"}));
    QCOMPARE(checker.unitType, UNIT_PANEL4V);
    QVERIFY(toldBeforeTheCheck);
    QCOMPARE(downloader.device, window->device);
    QCOMPARE(downloader.unitType, UNIT_PANEL4V);
    QCOMPARE(checked.count(), 1);
}

void TestIdentification::message_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<QString>("message");
    QTest::newRow("deck by itself, TRK300 left") << 12 << "TRK300_LEFT connected";
    QTest::newRow("deck by itself, TRK300 right") << 13 << "TRK300_RIGHT connected";
    QTest::newRow("deck by itself, TRK900 left") << 14 << "TRK900_LEFT connected";
    QTest::newRow("deck by itself, TRK900 right: a blank") << 15 << "TRK900 RIGHT connected";
    QTest::newRow("two sibling models") << 7 << "DSK10/DSK9 connected";
}

void TestIdentification::message()
{
    QFETCH(int, type);
    QFETCH(QString, message);
    TestWindow window;
    const auto unit = ScriptedUnit::plugIn(static_cast<UnitType>(type));
    unit->say(firstReport(1, 2));
    QCOMPARE(find(window, static_cast<UnitType>(type), unit->path()), 0);
    QCOMPARE(window.boxes.lines(), QStringList{informationBox(message)});
}

void TestIdentification::typeWithoutModel()
{
    TestWindow window;
    const auto unit = ScriptedUnit::plugIn(UNIT_HB4);
    unit->say(firstReport(1, 2));
    const QSignalSpy checked(window->updateChecker, SIGNAL(newUpdateFileDownloaded(bool)));
    QCOMPARE(find(window, static_cast<UnitType>(17), unit->path()), 0);
    passTicks(20); // a box would have been seen by now
    QCOMPARE(window.boxes.lines(), QStringList{});
    QCOMPARE(int{window->currentVersion}, 2);
    QCOMPARE(checked.count(), 1);
}

void TestIdentification::noRecord()
{
    TestWindow window;
    int result = notGiven;
    window->findDevice(nullptr, result);
    QCOMPARE(result, 1);
    QCOMPARE(callLines(), QStringList{});
    QCOMPARE(window.boxes.lines(), QStringList{});
    QVERIFY(window.button("connect_button").isEnabled());
}

void TestIdentification::failedOpening()
{
    TestWindow window;
    const QSignalSpy checked(window->updateChecker, SIGNAL(newUpdateFileDownloaded(bool)));
    QCOMPARE(find(window, UNIT_HB4, "virtual:99"), 1);
    QCOMPARE(callLines(), QStringList{"hid_open_path path=virtual:99 result=0"});
    QCOMPARE(window.boxes.lines(), QStringList{});
    QVERIFY(window.button("connect_button").isEnabled());
    QCOMPARE(checked.count(), 0);
}

QTEST_MAIN(TestIdentification)
#include "tst_identification.moc"
