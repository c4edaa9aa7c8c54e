// The program for Windows with the real HID library, on Wine's HID devices over this machine's own USB bus:
// an update of one model of each layout. tst_usblog downloads a log there, too.

#include "tests/harness/wine.h"
#include "tests/program/programtest.h"
#include "tests/program/scenario.h"
#include "tests/usb/pluggedunits.h"

#include <QtTest>

namespace {

/// Wine itself opens and closes a unit, at any time.
QStringList withoutOpening(QStringList journal)
{
    journal.removeAll("opened");
    journal.removeAll("closed");
    return journal;
}

} // namespace

class tst_usbwindows : public ServedProgramTest
{
    Q_OBJECT

private slots:
    void wholeUpdate_data();
    void wholeUpdate();

protected:
    Outcome begin() override;
};

Outcome tst_usbwindows::begin()
{
    return wine::isUsed() ? ServedProgramTest::begin() : Outcome("scripts/windows.sh --bus runs this test");
}

void tst_usbwindows::wholeUpdate_data()
{
    QTest::addColumn<QByteArray>("name");
    for (const char* name : {"hb4", "panel4v", "plt70"})
        QTest::newRow(name) << QByteArray(name);
}

void tst_usbwindows::wholeUpdate()
{
    QFETCH(QByteArray, name);
    const models::Connection connection = models::connectionOf(name);
    const QByteArray image = imageOf(60'001);
    Program program(desktop);
    useRealBus(program);
    MUST(scenario::offer(program, server, connection, image));
    PluggedUnits units;
    MUST(units.plugIn(scenario::options(program, connection)));
    MUST(program.start());
    MUST(connectOnceHeardOf(program, connection.message()));
    MUST(scenario::acceptOffer(program));
    MUST(program.press("updateDeviceButton"));
    MUST(scenario::seeFinished(program));
    QVERIFY(scenario::receivedImage(program, name) == image);
    QCOMPARE(withoutOpening(scenario::journal(program, name)),
             withoutOpening(scenario::faultlessJournal(image)));
    QCOMPARE(program.errorOutput(), QString());
}

QTEST_GUILESS_MAIN(tst_usbwindows)

#include "tst_usbwindows.moc"
