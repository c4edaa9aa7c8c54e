#include "log/logdownloader.h"
#include "net/updatechecker.h"
#include "tests/support/boxlines.h"
#include "tests/support/inside.h"
#include "tests/support/scriptedunit.h"
#include "tests/support/testwindow.h"

#include <QSignalSpy>
#include <QtTest>

#include <hidapi.h>

namespace {

constexpr int failing = -1; ///< instead of a version: the read fails
constexpr int silent = -2;  ///< no report comes
constexpr std::uint8_t earlier = 7;

/// Of a model that keeps its version in the last byte.
Bytes firstReport(std::uint8_t version)
{
    return ::firstReport(0x33, version);
}

/// A TRK300 pair and the press that finds it: the left deck is found first, the right one second. Handle 1 is
/// `device`, the deck found second; handle 2 is `secondDevice`, the deck found first.
struct Pair
{
    Pair() { placeServiceFile(); }

    void press() { window.press("connect_button"); }

    TestWindow window;
    std::shared_ptr<ScriptedUnit> left = ScriptedUnit::plugIn(UNIT_TRK300_LEFT);
    std::shared_ptr<ScriptedUnit> right = ScriptedUnit::plugIn(UNIT_TRK300_RIGHT);
    QSignalSpy checked{&window.checker(), SIGNAL(newUpdateFileDownloaded(bool))};
};

} // namespace

class TestIdentificationPair : public QObject
{
    Q_OBJECT

private slots:
    void callsInOrder();
    void versions_data();
    void versions();
    void whatIsTold();
    void deckThatDoesNotOpen();
    void noRecordOfTheSecondDeck();
    void noRecordOfTheFirstDeck();
};

void TestIdentificationPair::callsInOrder()
{
    Pair pair;
    pair.left->say(firstReport(1));
    pair.right->say(firstReport(2));
    pair.press();
    QCOMPARE(callsToUnits(), (QStringList{
                                 "hid_open_path path=virtual:2 result=1",
                                 "hid_open_path path=virtual:1 result=2",
                                 "hid_get_serial_number_string handle=1 length=16 result=0",
                                 "hid_get_serial_number_string handle=2 length=16 result=0",
                                 "hid_read_timeout handle=1 length=64 timeout=1000 result=64",
                                 "hid_read_timeout handle=2 length=64 timeout=1000 result=64",
                             }));
}

void TestIdentificationPair::versions_data()
{
    QTest::addColumn<int>("left"); // what it reports
    QTest::addColumn<int>("right");
    QTest::addColumn<int>("shown");
    QTest::addColumn<QString>("compared");
    QTest::newRow("both are read") << 31 << 24 << 31 << "24";
    QTest::newRow("first read fails") << 31 << failing << 31 << QString();
    QTest::newRow("second read fails") << failing << 24 << 24 << "24";
    QTest::newRow("both fail") << failing << failing << int{earlier} << QString();
    QTest::newRow("both are silent") << silent << silent << 0 << "0";
}

void TestIdentificationPair::versions()
{
    QFETCH(int, left);
    QFETCH(int, right);
    Pair pair;
    pair.window.state().currentVersion = earlier;
    for (const auto& [deck, version] : {std::pair(pair.left, left), std::pair(pair.right, right)}) {
        if (version == failing) {
            virtualbus::failReads(deck->number, true);
            expectDiagnostic("Can't read current version\n");
        } else if (version != silent) {
            deck->say(firstReport(static_cast<std::uint8_t>(version)));
        }
    }
    pair.press();
    QTEST(int{pair.window.state().currentVersion}, "shown");
    QTEST(inside::of(pair.window.checker()).curVersion, "compared");
    QCOMPARE(pair.window.boxes.lines(), QStringList{boxline::pairConnected(UNIT_TRK300_LEFT)});
    QCOMPARE(pair.checked.count(), 1);
    QVERIFY(!pair.window.button("connect_button").isEnabled());
}

void TestIdentificationPair::whatIsTold()
{
    Pair pair;
    pair.left->say(firstReport(1));
    pair.right->say(firstReport(2));
    pair.press();
    QCOMPARE(inside::of(pair.window.checker()).unitType, UNIT_TRK300_RIGHT);
    QCOMPARE(inside::of(pair.window.downloader()).device, static_cast<hid_device*>(nullptr));
    QCOMPARE(inside::of(pair.window.downloader()).unitType, UNIT_HB4);
}

/// The deck found second did not open: it has no handle, the pair goes on with the other one.
void TestIdentificationPair::deckThatDoesNotOpen()
{
    Pair pair;
    pair.left->say(firstReport(31));
    virtualbus::failOpens(pair.right->number, true);
    expectDiagnostic("Can't read current version\n");
    pair.press();
    QCOMPARE(callsToUnits(), (QStringList{
                                 "hid_open_path path=virtual:2 result=0",
                                 "hid_open_path path=virtual:1 result=1",
                                 "hid_get_serial_number_string handle=1 length=16 result=0",
                                 "hid_read_timeout handle=1 length=64 timeout=1000 result=64",
                             }));
    QCOMPARE(int{pair.window.state().currentVersion}, 31);
    QVERIFY(inside::of(pair.window.checker()).curVersion.isNull());
    QCOMPARE(pair.window.boxes.lines(), QStringList{boxline::pairConnected(UNIT_TRK300_LEFT)});
    QCOMPARE(pair.checked.count(), 1);
}

void TestIdentificationPair::noRecordOfTheSecondDeck()
{
    Pair pair;
    pair.left->say(firstReport(31));
    pair.window.state().deckCount = 2;
    pair.window.state().unitType = UNIT_TRK900_LEFT;
    pair.window.state().pendingDeckInfo->path = const_cast<char*>("virtual:1");
    expectDiagnostic("Can't read current version\n");
    QCOMPARE(inside::findDevice(*pair.window, nullptr), 0);
    QCOMPARE(int{pair.window.state().currentVersion}, 31);
    QCOMPARE(pair.window.boxes.lines(), QStringList{boxline::pairConnected(UNIT_TRK900_LEFT)});
}

void TestIdentificationPair::noRecordOfTheFirstDeck()
{
    Pair pair;
    pair.window.state().deckCount = 2;
    std::string path = pair.right->path();
    hid_device_info record{};
    record.path = path.data();
    QCOMPARE(inside::findDevice(*pair.window, &record), 1);
    QCOMPARE(virtualbus::openHandles(), 0);
    QCOMPARE(pair.window.boxes.lines(), QStringList{});
    QVERIFY(pair.window.button("connect_button").isEnabled());
    QCOMPARE(pair.checked.count(), 0);
}

QTEST_MAIN(TestIdentificationPair)
#include "tst_identificationpair.moc"
