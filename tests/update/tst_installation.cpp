#include "tests/support/boxlines.h"
#include "tests/support/rows.h"
#include "tests/support/texts.h"
#include "tests/support/transferdesk.h"
#include "update/transferstate.h"

#include <QtTest>

namespace {

/// A window whose image is sent: every tick follows the installation.
struct InstallationDesk : TransferDesk
{
    explicit InstallationDesk(UnitType type, std::optional<UnitType> other = {}) : TransferDesk(type, other)
    {
        window.label("labelTransfer").setText(text::transferInProgress);
        window.label("labelTransfer").setEnabled(true);
        window.bar("progressBarTransfer").setEnabled(true);
        followInstallation();
    }

    void tickWith(int status)
    {
        sayStatus(status);
        tick();
    }
};

/// A row for every status byte with one of these high nibbles, in both layouts.
void addBytes(std::initializer_list<int> nibbles)
{
    QTest::addColumn<UnitType>("type");
    QTest::addColumn<int>("status");
    for (const int nibble : nibbles) {
        for (int byte = nibble << 4; byte < (nibble + 1) << 4; ++byte) {
            QTest::addRow("older family, 0x%02X", byte) << UNIT_HB4 << byte;
            QTest::addRow("player, 0x%02X", byte) << UNIT_PLT65 << byte;
        }
    }
}

} // namespace

class TestInstallation : public QObject
{
    Q_OBJECT

private slots:
    void poll();
    void failingRead();
    void started_data() { addBytes({0xE}); }
    void started();
    void finished_data() { addBytes({0xF}); }
    void finished();
    void finishedWithoutStart();
    void programEndsWithTheBox();
    void errors_data() { addBytes({0x7, 0xC}); }
    void errors();
    void ignored_data() { addBytes({0x0, 0x1, 0x2, 0x3, 0x4, 0x5, 0x6, 0x8, 0x9, 0xA, 0xB, 0xD}); }
    void ignored();
    void placeOfTheStatus_data();
    void placeOfTheStatus();
    void buttonsStayDisabled();
    void pairIsPolledInOrder();
    void pair_data();
    void pair();
};

void TestInstallation::poll()
{
    InstallationDesk desk(UNIT_HB4);
    desk.tick();
    QCOMPARE(desk.calls(), QStringList{"hid_read_timeout handle=1 length=64 timeout=100 result=0"});
    QCOMPARE(desk.phase(), QString("0 1 0 0"));
}

void TestInstallation::failingRead()
{
    InstallationDesk desk(UNIT_HB4);
    const QStringList before = desk.window.controls();
    virtualbus::unplug(desk.unit->number);
    desk.tick(20);
    QCOMPARE(desk.calls().size(), 20);
    QCOMPARE(desk.window.controls(), before);
    QCOMPARE(desk.window.boxes.lines(), QStringList{});
}

void TestInstallation::started()
{
    QFETCH(UnitType, type);
    QFETCH(int, status);
    InstallationDesk desk(type);
    desk.tickWith(status);
    QCOMPARE(desk.window.bar("progressBarTransfer").value(), 100);
    QVERIFY(!desk.window.bar("progressBarTransfer").isEnabled());
    QCOMPARE(desk.window.label("labelTransfer").text(), QString(text::transferCompleted));
    QVERIFY(!desk.window.label("labelTransfer").isEnabled());
    QVERIFY(desk.window.bar("progressBarUpdate").isEnabled());
    QCOMPARE(desk.window.bar("progressBarUpdate").value(), 0);
    QVERIFY(desk.window.label("labelUpdate").isEnabled());
    QCOMPARE(desk.window.label("labelUpdate").text(), QString(text::updateInProgress));
    QCOMPARE(desk.window.boxes.lines(), QStringList{});
}

void TestInstallation::finished()
{
    QFETCH(UnitType, type);
    QFETCH(int, status);
    InstallationDesk desk(type);
    desk.tickWith(0xE0);
    QVERIFY(quits([&] { desk.tickWith(status); }));
    QCOMPARE(desk.window.bar("progressBarUpdate").value(), 100);
    QVERIFY(!desk.window.bar("progressBarUpdate").isEnabled());
    QCOMPARE(desk.window.label("labelUpdate").text(), QString(text::updateFinished));
    QVERIFY(!desk.window.label("labelUpdate").isEnabled());
    QCOMPARE(desk.window.label("labelTransfer").text(), QString(text::transferCompleted));
    QCOMPARE(desk.window.boxes.lines(), QStringList{boxline::finished});
}

void TestInstallation::finishedWithoutStart()
{
    InstallationDesk desk(UNIT_HB4);
    QVERIFY(quits([&] { desk.tickWith(0xF0); }));
    QCOMPARE(desk.window.label("labelTransfer").text(), QString(text::transferInProgress));
    QVERIFY(desk.window.label("labelTransfer").isEnabled());
    QCOMPARE(desk.window.label("labelUpdate").text(), QString(text::updateFinished));
    QCOMPARE(desk.window.bar("progressBarUpdate").value(), 100);
    QCOMPARE(desk.window.boxes.lines(), QStringList{boxline::finished});
}

void TestInstallation::programEndsWithTheBox()
{
    InstallationDesk desk(UNIT_HB4);
    desk.window.boxes.leaveOpen();
    QVERIFY(runsOn([&] { desk.tickWith(0xF0); }, // nobody dismisses the box
                   [&] { return desk.window.boxes.openCount() == 1; }));
    QCOMPARE(desk.window.boxes.lines(), QStringList{boxline::finished});
}

/// The display stays as it was, the program goes on, and so does the polling.
void TestInstallation::errors()
{
    QFETCH(UnitType, type);
    QFETCH(int, status);
    const int creeping = status & 1; // the bar's state does not matter
    InstallationDesk desk(type);
    if (creeping == 1)
        desk.tickWith(0xE0);
    const QStringList before = desk.window.controls();
    const Boxes& boxes = desk.window.boxes;
    QVERIFY(runsOn([&] { desk.tickWith(status); },
                   [&] { return !boxes.seen().empty() && boxes.openCount() == 0; }));
    QCOMPARE(boxes.lines(), QStringList{status >> 4 == 0xC ? boxline::wrongDigest : boxline::rejected});
    QCOMPARE(desk.window.controls(), before);
    QCOMPARE(desk.phase(), QString("0 1 0 0"));
    desk.tickWith(0xE0);
    QCOMPARE(desk.window.label("labelTransfer").text(), QString(text::transferCompleted));
    for (int tick = 0; tick < 2; ++tick)
        desk.tickWith(0x05);
    QCOMPARE(desk.window.bar("progressBarUpdate").value(), creeping); // one step ahead, if it crept before
}

void TestInstallation::ignored()
{
    QFETCH(UnitType, type);
    QFETCH(int, status);
    InstallationDesk desk(type);
    const QStringList before = desk.window.controls();
    desk.tickWith(status);
    QCoreApplication::processEvents(); // a box would open in a call of its own
    QCoreApplication::sendPostedEvents();
    QCOMPARE(desk.window.boxes.lines(), QStringList{});
    QCOMPARE(desk.window.controls(), before);
    QCOMPARE(desk.phase(), QString("0 1 0 0"));
    QCOMPARE(desk.writes().size(), std::size_t{0});
}

void TestInstallation::placeOfTheStatus_data()
{
    const Rows<UnitType, int> row("type", "index");
    row("older family: not at 60", UNIT_HB4, 60);
    row("player: not in front", UNIT_PLT65, 0);
}

void TestInstallation::placeOfTheStatus()
{
    QFETCH(UnitType, type);
    QFETCH(int, index);
    InstallationDesk desk(type);
    Bytes report(64, 0);
    report[static_cast<std::size_t>(index)] = 0xE0;
    desk.unit->say(report);
    desk.tick();
    QCOMPARE(desk.window.label("labelUpdate").text(), QString(text::updateIdle));
}

void TestInstallation::buttonsStayDisabled()
{
    InstallationDesk desk(UNIT_HB4);
    desk.window.button("updateDeviceButton").setEnabled(false);
    desk.window.button("downloadLogFile").setEnabled(false);
    desk.tickWith(0xC0);
    QTRY_COMPARE(desk.window.boxes.lines().size(), 1);
    QVERIFY(quits([&] { desk.tickWith(0xF0); }));
    QVERIFY(!desk.window.button("updateDeviceButton").isEnabled());
    QVERIFY(!desk.window.button("downloadLogFile").isEnabled());
}

void TestInstallation::pairIsPolledInOrder()
{
    InstallationDesk desk(UNIT_TRK300_RIGHT, UNIT_TRK300_LEFT);
    desk.tick(); // the first deck says nothing: the other one is not asked
    desk.sayStatus(0x05);
    desk.tick();
    QCOMPARE(desk.calls(), (QStringList{"hid_read_timeout handle=1 length=64 timeout=100 result=0",
                                        "hid_read_timeout handle=1 length=64 timeout=100 result=64",
                                        "hid_read_timeout handle=2 length=64 timeout=100 result=0"}));
}

void TestInstallation::pair_data()
{
    const Rows<int, int, bool> row("first", "second", "isStarted");
    row("both started", 0xE0, 0xE0, true);
    row("the second one's status counts", 0x00, 0xE0, true);
    row("the first one's does not", 0xE0, 0x00, false);
    row("first alone", 0xE0, TransferDesk::silent, false);
    row("second alone", TransferDesk::silent, 0xE0, false);
}

void TestInstallation::pair()
{
    QFETCH(int, first);
    QFETCH(int, second);
    QFETCH(bool, isStarted);
    InstallationDesk desk(UNIT_TRK300_RIGHT, UNIT_TRK300_LEFT);
    desk.sayStatus(first, second);
    desk.tick();
    QCOMPARE(desk.window.label("labelTransfer").text(),
             QString(isStarted ? text::transferCompleted : text::transferInProgress));
}

QTEST_MAIN(TestInstallation)
#include "tst_installation.moc"
