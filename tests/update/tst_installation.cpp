#include "tests/support/boxlines.h"
#include "tests/support/ticks.h"
#include "tests/support/transferdesk.h"
#include "update/transferstate.h"

#include <QtTest>

namespace {

constexpr int silent = -1; ///< instead of a status

/// A window whose image is sent: every tick follows the installation.
struct InstallationDesk : TransferDesk
{
    explicit InstallationDesk(UnitType type, std::optional<UnitType> other = {}) : TransferDesk(type, other)
    {
        window.label("labelTransfer").setText("Transfer: in progress");
        window.label("labelTransfer").setEnabled(true);
        window.bar("progressBarTransfer").setEnabled(true);
        window->requestSent = 1;
        window->applyingPhase = 1;
    }

    void tickWith(int status)
    {
        unit->sayStatus(static_cast<std::uint8_t>(status));
        tick();
    }
};

} // namespace

class TestInstallation : public QObject
{
    Q_OBJECT

private slots:
    void poll();
    void failingRead();
    void started_data();
    void started();
    void finished_data();
    void finished();
    void finishedWithoutStart();
    void programEndsWithTheBox();
    void errors_data();
    void errors();
    void ignored_data();
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
    QCOMPARE(desk.phase(), QString("0 1 1 0"));
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

void TestInstallation::started_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<int>("status");
    QTest::newRow("older family, 0xE0") << int{UNIT_HB4} << 0xE0;
    QTest::newRow("older family, 0xE7") << int{UNIT_HB4} << 0xE7;
    QTest::newRow("player, 0xE0") << int{UNIT_PLT65} << 0xE0;
    QTest::newRow("player, 0xEF") << int{UNIT_PLT65} << 0xEF;
}

void TestInstallation::started()
{
    QFETCH(int, type);
    QFETCH(int, status);
    InstallationDesk desk(static_cast<UnitType>(type));
    desk.tickWith(status);
    QCOMPARE(desk.window.bar("progressBarTransfer").value(), 100);
    QVERIFY(!desk.window.bar("progressBarTransfer").isEnabled());
    QCOMPARE(desk.window.label("labelTransfer").text(), QString("Transfer: completed"));
    QVERIFY(!desk.window.label("labelTransfer").isEnabled());
    QVERIFY(desk.window.bar("progressBarUpdate").isEnabled());
    QCOMPARE(desk.window.bar("progressBarUpdate").value(), 0);
    QVERIFY(desk.window.label("labelUpdate").isEnabled());
    QCOMPARE(desk.window.label("labelUpdate").text(),
             QString("Update: in progress. Do not power off device!"));
    QCOMPARE(desk.window->fakeProgressActive, 1);
    QCOMPARE(desk.window.boxes.lines(), QStringList{});
}

void TestInstallation::finished_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<int>("status");
    QTest::newRow("older family, 0xF0") << int{UNIT_HB4} << 0xF0;
    QTest::newRow("older family, 0xF5") << int{UNIT_HB4} << 0xF5;
    QTest::newRow("player, 0xFF") << int{UNIT_PLT65} << 0xFF;
}

void TestInstallation::finished()
{
    QFETCH(int, type);
    QFETCH(int, status);
    InstallationDesk desk(static_cast<UnitType>(type));
    desk.tickWith(0xE0);
    QVERIFY(quits([&] { desk.tickWith(status); }));
    QCOMPARE(desk.window->fakeProgressActive, 0);
    QCOMPARE(desk.window.bar("progressBarUpdate").value(), 100);
    QVERIFY(!desk.window.bar("progressBarUpdate").isEnabled());
    QCOMPARE(desk.window.label("labelUpdate").text(), QString("Update: finished"));
    QVERIFY(!desk.window.label("labelUpdate").isEnabled());
    QCOMPARE(desk.window.label("labelTransfer").text(), QString("Transfer: completed"));
    QCOMPARE(desk.window.boxes.lines(), QStringList{boxline::finished});
}

void TestInstallation::finishedWithoutStart()
{
    InstallationDesk desk(UNIT_HB4);
    QVERIFY(quits([&] { desk.tickWith(0xF0); }));
    QCOMPARE(desk.window.label("labelTransfer").text(), QString("Transfer: in progress"));
    QVERIFY(desk.window.label("labelTransfer").isEnabled());
    QCOMPARE(desk.window.label("labelUpdate").text(), QString("Update: finished"));
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

void TestInstallation::errors_data()
{
    QTest::addColumn<int>("status");
    QTest::addColumn<int>("creeping");
    QTest::addColumn<QString>("box");
    QTest::newRow("wrong digest, 0xC0") << 0xC0 << 0 << boxline::wrongDigest;
    QTest::newRow("wrong digest, 0xCA, bar creeping") << 0xCA << 1 << boxline::wrongDigest;
    QTest::newRow("rejected, 0x70") << 0x70 << 0 << boxline::rejected;
    QTest::newRow("rejected, 0x7F, bar creeping") << 0x7F << 1 << boxline::rejected;
}

/// The display stays as it was, the program goes on, and so does the polling.
void TestInstallation::errors()
{
    QFETCH(int, status);
    QFETCH(int, creeping);
    QFETCH(QString, box);
    InstallationDesk desk(UNIT_HB4);
    desk.window->fakeProgressActive = creeping;
    const QStringList before = desk.window.controls();
    const Boxes& boxes = desk.window.boxes;
    QVERIFY(runsOn([&] { desk.tickWith(status); },
                   [&] { return !boxes.seen().empty() && boxes.openCount() == 0; }));
    QCOMPARE(boxes.lines(), QStringList{box});
    QCOMPARE(desk.window.controls(), before);
    QCOMPARE(desk.window->fakeProgressActive, creeping);
    QCOMPARE(desk.phase(), QString("0 1 1 0"));
    desk.tickWith(0xE0);
    QCOMPARE(desk.window.label("labelTransfer").text(), QString("Transfer: completed"));
}

void TestInstallation::ignored_data()
{
    QTest::addColumn<int>("status");
    for (int nibble = 0; nibble <= 15; ++nibble)
        if (nibble != 0x7 && nibble != 0xC && nibble != 0xE && nibble != 0xF)
            QTest::addRow("0x%X0", static_cast<unsigned>(nibble)) << (nibble << 4 | 0x05);
}

void TestInstallation::ignored()
{
    QFETCH(int, status);
    InstallationDesk desk(UNIT_HB4);
    const QStringList before = desk.window.controls();
    desk.tickWith(status);
    passTicks(20); // a box would open in a call of its own
    QCOMPARE(desk.window.boxes.lines(), QStringList{});
    QCOMPARE(desk.window.controls(), before);
    QCOMPARE(desk.phase(), QString("0 1 1 0"));
    QCOMPARE(desk.writes().size(), std::size_t{0});
}

void TestInstallation::placeOfTheStatus_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<int>("index");
    QTest::newRow("older family: not at 60") << int{UNIT_HB4} << 60;
    QTest::newRow("player: not in front") << int{UNIT_PLT65} << 0;
}

void TestInstallation::placeOfTheStatus()
{
    QFETCH(int, type);
    QFETCH(int, index);
    InstallationDesk desk(static_cast<UnitType>(type));
    Bytes report(64, 0);
    report[static_cast<std::size_t>(index)] = 0xE0;
    desk.unit->say(report);
    desk.tick();
    QCOMPARE(desk.window->fakeProgressActive, 0);
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
    desk.unit->sayStatus(0x05);
    desk.tick();
    QCOMPARE(desk.calls(), (QStringList{"hid_read_timeout handle=1 length=64 timeout=100 result=0",
                                        "hid_read_timeout handle=1 length=64 timeout=100 result=64",
                                        "hid_read_timeout handle=2 length=64 timeout=100 result=0"}));
}

void TestInstallation::pair_data()
{
    QTest::addColumn<int>("first");
    QTest::addColumn<int>("second");
    QTest::addColumn<bool>("isStarted");
    QTest::newRow("both started") << 0xE0 << 0xE0 << true;
    QTest::newRow("the second one's status counts") << 0x00 << 0xE0 << true;
    QTest::newRow("the first one's does not") << 0xE0 << 0x00 << false;
    QTest::newRow("first alone") << 0xE0 << silent << false;
    QTest::newRow("second alone") << silent << 0xE0 << false;
}

void TestInstallation::pair()
{
    QFETCH(int, first);
    QFETCH(int, second);
    QFETCH(bool, isStarted);
    InstallationDesk desk(UNIT_TRK300_RIGHT, UNIT_TRK300_LEFT);
    if (first != silent)
        desk.unit->sayStatus(static_cast<std::uint8_t>(first));
    if (second != silent)
        desk.second->sayStatus(static_cast<std::uint8_t>(second));
    desk.tick();
    QCOMPARE(desk.window->fakeProgressActive, isStarted ? 1 : 0);
    QCOMPARE(desk.window.label("labelTransfer").text(),
             QString(isStarted ? "Transfer: completed" : "Transfer: in progress"));
}

QTEST_MAIN(TestInstallation)
#include "tst_installation.moc"
