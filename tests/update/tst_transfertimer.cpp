#include "tests/support/boxlines.h"
#include "tests/support/texts.h"
#include "tests/support/ticks.h"
#include "tests/support/transferdesk.h"
#include "update/transferstate.h"

#include <QPointer>
#include <QSignalSpy>
#include <QTimer>
#include <QtTest>

using Trouble = std::function<void(TransferDesk&)>;

namespace {

using transferstate::transferTimer;

const Trouble timeOut = [](TransferDesk& desk) { desk.sayStatus(0xA5); };
const Trouble skipPackets = [](TransferDesk& desk) { desk.sayStatus(0xB5); };
const Trouble takeNothing = [](TransferDesk& desk) { virtualbus::failNextWrites(desk.unit->number, 1000); };

/// The stream stands behind the image's end, as nothing but a fault of the program could bring it there.
void overrun(TransferDesk& desk)
{
    desk.startStream(imageOf(500));
    desk.skipTo(100);
}

} // namespace

Q_DECLARE_METATYPE(Trouble)

class TestTransferTimer : public QObject
{
    Q_OBJECT

private slots:
    void pressStartsTheTimer();
    void imageUnderTheTimer();
    void secondPressStopsTheTimer();
    void thirdPressStartsItAnew();
    void secondPressWithoutImage();
    void noStepUnderABox_data();
    void noStepUnderABox();
    void noStepUnderTheBoxOfAMissingFile();
    void repeatedRefusalIsShownOnce();

private:
    /// What a tick does shows in the calls of the HID library.
    static bool isTicking(const TransferDesk& desk)
    {
        const int before = desk.calls().size();
        const auto hasTicked = [&] { return desk.calls().size() > before; };
        passTicks(30, hasTicked);
        return hasTicked();
    }

    /// Update Device, once the image's file is gone: its box opens, and no tick is made meanwhile.
    static void pressWithoutImage(TransferDesk& desk)
    {
        desk.window->onChangeUpdateFileName("nowhere.sb");
        bool tickedUnderTheBox = true;
        desk.window.boxes.whileOpen = [&](QMessageBox&) { tickedUnderTheBox = isTicking(desk); };
        desk.window->updateDevice();
        QCOMPARE(desk.window.boxes.lines(), QStringList{boxline::noFile});
        QVERIFY(!tickedUnderTheBox);
    }
};

void TestTransferTimer::pressStartsTheTimer()
{
    TransferDesk desk(UNIT_HB4);
    placeFile(filename::image, imageOf(500));
    desk.window.button("downloadLogFile").show();
    desk.window.button("downloadLogFile").setEnabled(true);
    desk.window.button("updateDeviceButton").setEnabled(true);
    desk.window.press("updateDeviceButton");
    QVERIFY(transferTimer != nullptr);
    QVERIFY(transferTimer->isActive());
    QCOMPARE(transferTimer->interval(), 1);
    QVERIFY(!transferTimer->isSingleShot());
    QVERIFY(transferTimer->parent() == nullptr);
    QVERIFY(!desk.window.button("updateDeviceButton").isEnabled());
    QVERIFY(!desk.window.button("downloadLogFile").isEnabled());
    QCOMPARE(desk.calls(), QStringList{}); // the first tick comes a millisecond later
}

void TestTransferTimer::imageUnderTheTimer()
{
    TransferDesk desk(UNIT_PLT65);
    const QByteArray image = imageOf(6000);
    placeFile(filename::image, image);
    desk.window->updateDevice();
    QTRY_COMPARE(desk.writes().size(), std::size_t{1});
    desk.sayStatus(0x95);
    const QSignalSpy ticks(transferTimer, &QTimer::timeout);
    QTRY_VERIFY(!desk.calls().filter("timeout=100").isEmpty());               // the installation is followed
    QVERIFY2(ticks.size() >= 101, qPrintable(QString::number(ticks.size()))); // a packet a tick
    QVERIFY(desk.packets() == packetsOf(models::plt70, image));
}

void TestTransferTimer::secondPressStopsTheTimer()
{
    TransferDesk desk(UNIT_HB4);
    placeFile(filename::image, imageOf(500));
    desk.window->updateDevice();
    QTRY_VERIFY(!desk.calls().isEmpty());
    const QPointer<QTimer> timer = transferTimer;
    desk.window->updateDevice();
    QVERIFY(transferTimer == nullptr);
    QVERIFY(timer.isNull());
    QVERIFY(!isTicking(desk));
    QCOMPARE(desk.window.boxes.lines(), QStringList{});
}

void TestTransferTimer::thirdPressStartsItAnew()
{
    TransferDesk desk(UNIT_HB4);
    placeFile(filename::image, imageOf(500));
    for (int press = 0; press < 3; ++press)
        desk.window->updateDevice();
    QVERIFY(transferTimer != nullptr);
    QTRY_VERIFY(desk.calls().size() > 2);
    QCOMPARE(desk.writes().size(), std::size_t{1});
}

/// The file is gone when Update Device is pressed in mid-stream: nothing of no image may reach the unit.
void TestTransferTimer::secondPressWithoutImage()
{
    TransferDesk desk(UNIT_HB4);
    const QByteArray image = imageOf(60000);
    placeFile(filename::image, image);
    desk.sayStatus(0x95);
    desk.window->updateDevice();
    QTRY_VERIFY(desk.writes().size() > 3);
    pressWithoutImage(desk);
    QVERIFY(transferTimer == nullptr);
}

void TestTransferTimer::noStepUnderABox_data()
{
    QTest::addColumn<Trouble>("trouble");
    QTest::newRow("timed out") << timeOut;
    QTest::newRow("packets skipped") << skipPackets;
    QTest::newRow("request not taken") << takeNothing;
    QTest::newRow("behind the image's end") << Trouble(overrun);
}

void TestTransferTimer::noStepUnderABox()
{
    QFETCH(Trouble, trouble);
    TransferDesk desk(UNIT_HB4);
    placeFile(filename::image, imageOf(500));
    bool tickedUnderTheBox = true;
    desk.window.boxes.whileOpen = [&](QMessageBox&) { tickedUnderTheBox = isTicking(desk); };
    trouble(desk);
    desk.window->updateDevice();
    QTRY_COMPARE(desk.window.boxes.lines().size(), 1);
    QTRY_COMPARE(desk.window.boxes.openCount(), 0);
    QVERIFY(!tickedUnderTheBox);
    QTRY_VERIFY(desk.calls().filter("timeout=100").size() >= 1); // then the installation is followed
    QCOMPARE(desk.window.boxes.lines().size(), 1);
}

void TestTransferTimer::noStepUnderTheBoxOfAMissingFile()
{
    TransferDesk desk(UNIT_HB4);
    pressWithoutImage(desk);
    QVERIFY(transferTimer != nullptr && transferTimer->isActive());
}

void TestTransferTimer::repeatedRefusalIsShownOnce()
{
    TransferDesk desk(UNIT_HB4);
    placeFile(filename::image, imageOf(500));
    desk.window->updateDevice();
    QTRY_COMPARE(desk.writes().size(), std::size_t{1});
    for (int i = 0; i < 10; ++i)
        desk.sayStatus(0xA5);
    QTRY_COMPARE(desk.calls().filter("timeout=100").filter("result=64").size(),
                 9); // no verdict of an installation
    QCOMPARE(desk.window.boxes.lines().size(), 1);
}

QTEST_MAIN(TestTransferTimer)
#include "tst_transfertimer.moc"
