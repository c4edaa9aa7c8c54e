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
    void versions();
    void whatIsTold();
    void firstReadFails();
    void secondReadFails();
    void bothReadsFail();
    void silentDecks();
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

void TestIdentificationPair::versions()
{
    Pair pair;
    pair.left->say(firstReport(31));
    pair.right->say(firstReport(24));
    pair.press();
    QCOMPARE(int{pair.window.state().currentVersion}, 31);
    QCOMPARE(int{inside::of(pair.window.checker()).curVersionByte}, 24);
    QCOMPARE(inside::of(pair.window.checker()).curVersion, QString("24"));
}

void TestIdentificationPair::whatIsTold()
{
    Pair pair;
    pair.left->say(firstReport(1));
    pair.right->say(firstReport(2));
    pair.press();
    QCOMPARE(pair.window.boxes.lines(), QStringList{boxline::pairConnected(UNIT_TRK300_LEFT)});
    QCOMPARE(inside::of(pair.window.checker()).unitType, UNIT_TRK300_RIGHT);
    QCOMPARE(pair.checked.count(), 1);
    QCOMPARE(inside::of(pair.window.downloader()).device, static_cast<hid_device*>(nullptr));
    QCOMPARE(inside::of(pair.window.downloader()).unitType, UNIT_HB4);
    QVERIFY(!pair.window.button("connect_button").isEnabled());
}

void TestIdentificationPair::firstReadFails()
{
    Pair pair;
    pair.left->say(firstReport(31));
    virtualbus::failReads(pair.right->number, true);
    expectDiagnostic("Can't read current version\n");
    pair.press();
    QCOMPARE(int{pair.window.state().currentVersion}, 31);
    QVERIFY(inside::of(pair.window.checker()).curVersion.isNull());
    QCOMPARE(pair.window.boxes.lines(), QStringList{boxline::pairConnected(UNIT_TRK300_LEFT)});
    QCOMPARE(pair.checked.count(), 1);
}

void TestIdentificationPair::secondReadFails()
{
    Pair pair;
    pair.right->say(firstReport(24));
    virtualbus::failReads(pair.left->number, true);
    expectDiagnostic("Can't read current version\n");
    pair.press();
    QCOMPARE(int{pair.window.state().currentVersion}, 24);
    QCOMPARE(inside::of(pair.window.checker()).curVersion, QString("24"));
    QCOMPARE(pair.checked.count(), 1);
}

void TestIdentificationPair::bothReadsFail()
{
    Pair pair;
    pair.window.state().currentVersion = 7;
    virtualbus::failReads(pair.left->number, true);
    virtualbus::failReads(pair.right->number, true);
    expectDiagnostic("Can't read current version\n");
    expectDiagnostic("Can't read current version\n");
    pair.press();
    QCOMPARE(int{pair.window.state().currentVersion}, 7);
    QCOMPARE(pair.window.boxes.lines(), QStringList{boxline::pairConnected(UNIT_TRK300_LEFT)});
    QVERIFY(!pair.window.button("connect_button").isEnabled());
}

void TestIdentificationPair::silentDecks()
{
    Pair pair;
    pair.window.state().currentVersion = 7;
    pair.press();
    QCOMPARE(int{pair.window.state().currentVersion}, 0);
    QCOMPARE(inside::of(pair.window.checker()).curVersion, QString("0"));
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
    int result = -1;
    inside::findDevice(*pair.window, nullptr, result);
    QCOMPARE(result, 0);
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
    int result = -1;
    inside::findDevice(*pair.window, &record, result);
    QCOMPARE(result, 1);
    QCOMPARE(virtualbus::openHandles(), 0);
    QCOMPARE(pair.window.boxes.lines(), QStringList{});
    QVERIFY(pair.window.button("connect_button").isEnabled());
    QCOMPARE(pair.checked.count(), 0);
}

QTEST_MAIN(TestIdentificationPair)
#include "tst_identificationpair.moc"
