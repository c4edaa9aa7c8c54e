// Units on a real bus are found, named and read, and given back afterwards; others are left alone.

#include "tests/harness/waiting.h"
#include "tests/program/programtest.h"
#include "tests/program/scenario.h"
#include "tests/usb/otherprogram.h"
#include "tests/usb/pluggedunits.h"

#include <QtTest>

class tst_usbmodels : public ServedProgramTest
{
    Q_OBJECT

private slots:
    void everyModel_data();
    void everyModel();
    void otherNameIsLeftAlone();
    void unitPluggedInLater();
    void heldByAnotherProgram_data();
    void heldByAnotherProgram();
};

void tst_usbmodels::everyModel_data()
{
    QTest::addColumn<QByteArray>("name");
    int row = 0;
    for (const models::Connection& connection : models::connections())
        if (takesRow(row++))
            QTest::newRow(connection.name) << connection.name;
}

void tst_usbmodels::everyModel()
{
    QFETCH(QByteArray, name);
    const models::Connection connection = models::connectionOf(name);
    Program program(desktop);
    useRealBus(program);
    MUST(scenario::offer(program, server, connection, "image"));
    PluggedUnits units;
    MUST(units.plugIn(scenario::options(program, connection)));
    MUST(program.start());
    MUST(scenario::connectUnit(program, connection.message()));
    MUST(program.waitForBox(offerBox(scenario::offerText(), scenario::changeLog)));
    MUST(program.answer("No"));
    MUST(scenario::closeAndWait(program));
    MUST(units.seeGivenBack());
    QCOMPARE(program.errorOutput(), QString());
    for (const models::Model& unit : connection.units) {
        QStringList told = scenario::journal(program, unit.option);
        told.removeAll("closed"); // a unit notices that after a while
        QCOMPARE(told, QStringList{"opened"});
    }
}

void tst_usbmodels::otherNameIsLeftAlone()
{
    Program program(desktop);
    useRealBus(program);
    PluggedUnits units;
    MUST(units.plugIn({scenario::unitOptions(program, "hb4", ",product=Keyboard")}));
    const QStringList nodes = PluggedUnits::nodes();
    MUST(program.start());
    MUST(scenario::connectInVain(program));
    QCOMPARE(PluggedUnits::nodes(), nodes); // the system's driver was not taken off it
    MUST(scenario::closeAndWait(program));
    QCOMPARE(scenario::journal(program), QStringList());
}

void tst_usbmodels::unitPluggedInLater()
{
    Program program(desktop);
    useRealBus(program);
    MUST(program.placeFile(filename::service, "image")); // so that no server is asked
    const QString unit = scenario::unitOptions(program, "plt70");
    PluggedUnits before;
    MUST(before.plugIn({unit}));
    MUST(before.unplug());
    MUST(program.start());
    MUST(scenario::connectInVain(program));

    PluggedUnits after;
    MUST(after.plugIn({unit}));
    MUST(connectOnceHeardOf(program, models::plt70.connected));
    MUST(scenario::closeAndWait(program));
    MUST(after.seeGivenBack());
}

void tst_usbmodels::heldByAnotherProgram_data()
{
    QTest::addColumn<bool>("isFound");
    // One that uses the bus itself has taken the unit off the system's driver; one that goes through the
    // driver does not keep others away.
    QTest::newRow("libusb") << false;
    QTest::newRow("hidraw") << true;
}

void tst_usbmodels::heldByAnotherProgram()
{
    QFETCH(bool, isFound);
    Program program(desktop);
    useRealBus(program);
    MUST(program.placeFile(filename::service, "image"));
    PluggedUnits units;
    MUST(units.plugIn({scenario::unitOptions(program, "hb4")}));
    OtherProgram other;
    MUST(other.hold(QTest::currentDataTag()));
    MUST(program.start());
    if (!isFound) {
        MUST(scenario::connectInVain(program));
        MUST(other.letGo());
    }
    MUST(scenario::connectUnit(program));
    MUST(scenario::closeAndWait(program));
    MUST(other.letGo());
    MUST(units.seeGivenBack());
}

QTEST_GUILESS_MAIN(tst_usbmodels)

#include "tst_usbmodels.moc"
