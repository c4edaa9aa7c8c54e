#include "tests/support/rows.h"
#include "tests/support/texts.h"
#include "tests/support/transferdesk.h"
#include "update/transferstate.h"

#include <QtTest>

namespace {

/// As the program starts; a test's window sets both back.
const std::pair atStart(transferstate::fakeProgressValue, transferstate::fakeProgressTick);

/// The unit says that it installs, which starts the creeping without a step, and is gone then: reads fail at
/// once instead of waiting.
void startInstalling(TransferDesk& desk)
{
    desk.followInstallation();
    desk.sayStatus(0xE0);
    desk.tick();
    virtualbus::unplug(desk.unit->number);
}

} // namespace

class TestCreepingProgress : public QObject
{
    Q_OBJECT

private slots:
    void startsAtNothing();
    void barAfterTicks_data();
    void barAfterTicks();
    void inactive();
    void beforeAnythingElseInATick();
    void goesOnWhereTheLastOneStopped();
    void silentUnit();
    void finishedStaysAtHundred();
    void slotOfItsOwn();
};

void TestCreepingProgress::startsAtNothing()
{
    QCOMPARE(atStart, std::pair(0, 0));
}

void TestCreepingProgress::barAfterTicks_data()
{
    const Rows<int, int> row("ticks", "bar");
    row("first tick: not yet", 1, -1);
    row("second tick: 0", 2, 0);
    row("third tick: no step", 3, 0);
    row("fourth tick: 1", 4, 1);
    row("twenty ticks", 20, 9);
    row("one tick before the last step", 199, 98);
    row("the last step", 200, 99);
    row("no step beyond 99", 1000, 99);
}

void TestCreepingProgress::barAfterTicks()
{
    QFETCH(int, ticks);
    QFETCH(int, bar);
    TransferDesk desk(UNIT_HB4);
    desk.window.bar("progressBarUpdate").setMinimum(-1); // to tell "not set" from 0
    desk.window.bar("progressBarUpdate").setValue(-1);
    startInstalling(desk);
    desk.tick(ticks);
    QCOMPARE(desk.window.bar("progressBarUpdate").value(), bar);
}

void TestCreepingProgress::inactive()
{
    TransferDesk desk(UNIT_HB4);
    desk.followInstallation();
    virtualbus::unplug(desk.unit->number);
    desk.tick(20);
    QCOMPARE(transferstate::fakeProgressValue, 0);
    QCOMPARE(transferstate::fakeProgressTick, 0);
}

void TestCreepingProgress::beforeAnythingElseInATick()
{
    TransferDesk desk(UNIT_HB4);
    desk.followInstallation();
    desk.sayStatus(0xE0);
    desk.tick(); // starts the creeping, does not step
    QCOMPARE(transferstate::fakeProgressTick, 0);
    desk.sayStatus(0x05);
    desk.tick();
    QCOMPARE(transferstate::fakeProgressTick, 1);
    QVERIFY(quits([&] {
        desk.sayStatus(0xF0);
        desk.tick(); // steps to 0, then finishes
    }));
    QCOMPARE(transferstate::fakeProgressValue, 1);
    QCOMPARE(desk.window.bar("progressBarUpdate").value(), 100);
}

void TestCreepingProgress::goesOnWhereTheLastOneStopped()
{
    TransferDesk desk(UNIT_HB4);
    transferstate::fakeProgressValue = 40; // of an earlier installation
    startInstalling(desk);
    desk.tick(2);
    QCOMPARE(desk.window.bar("progressBarUpdate").value(), 40);
}

/// With polls of 100 ms each, at most a step in 200 ms; the bar waits at 99.
void TestCreepingProgress::silentUnit()
{
    TransferDesk desk(UNIT_HB4);
    transferstate::fakeProgressValue = 97;
    placeFile(filename::image, imageOf(10));
    desk.followInstallation();
    desk.sayStatus(0xE0);
    desk.window->updateDevice();
    QTRY_COMPARE(desk.window.bar("progressBarUpdate").value(), 98);
    QTRY_COMPARE(desk.window.bar("progressBarUpdate").value(), 99);
    const int polls = desk.calls().size();
    QVERIFY2(polls >= 4 && polls <= 12, qPrintable(QString::number(polls)));
    QTRY_VERIFY(desk.calls().size() >= polls + 4);
    QCOMPARE(desk.window.bar("progressBarUpdate").value(), 99);
    QCOMPARE(desk.window.label("labelUpdate").text(), QString(text::updateInProgress));
}

void TestCreepingProgress::finishedStaysAtHundred()
{
    TransferDesk desk(UNIT_HB4);
    desk.followInstallation();
    QVERIFY(quits([&] {
        desk.sayStatus(0xE0);
        desk.sayStatus(0xF0);
        desk.tick(2);
    }));
    virtualbus::unplug(desk.unit->number);
    desk.tick(20);
    QCOMPARE(desk.window.bar("progressBarUpdate").value(), 100);
}

void TestCreepingProgress::slotOfItsOwn()
{
    TransferDesk desk(UNIT_HB4);
    for (int call = 0; call < 20; ++call)
        desk.window->updateFakeProgressSlot(); // whether the bar creeps or not
    QCOMPARE(desk.window.bar("progressBarUpdate").value(), 9);
    for (int call = 0; call < 1000; ++call)
        desk.window->updateFakeProgressSlot();
    QCOMPARE(desk.window.bar("progressBarUpdate").value(), 99);
    QCOMPARE(desk.calls(), QStringList{});
}

QTEST_MAIN(TestCreepingProgress)
#include "tst_creepingprogress.moc"
