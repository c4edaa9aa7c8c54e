// Units on a real bus are found, named and read, and given back afterwards; others are left alone.

#include "tests/harness/updateserver.h"
#include "tests/program/scenario.h"
#include "tests/usb/otherprogram.h"
#include "tests/usb/pluggedunits.h"

#include <QtTest>

namespace {

BoxText notFoundBox()
{
    return errorBox("Device is not found.\nPlease connect.");
}

Outcome pressInVain(Program& program)
{
    STEP(program.press("connect_button"));
    STEP(program.waitForBox(notFoundBox()));
    STEP(program.answer("Ok"));
    return program.waitForNoBox();
}

Outcome close(Program& program)
{
    STEP(program.closeWindow());
    return program.waitForExit(0);
}

} // namespace

class tst_usbmodels : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();

    void everyModel_data();
    void everyModel();
    void otherNameIsLeftAlone();
    void unitPluggedInLater();
    void heldByAnotherProgram_data();
    void heldByAnotherProgram();

private:
    Desktop desktop;
    UpdateServer server;
};

void tst_usbmodels::initTestCase()
{
    MUST(desktop.start());
    MUST(server.start());
}

void tst_usbmodels::everyModel_data()
{
    QTest::addColumn<QStringList>("models");
    QTest::addColumn<QString>("stem"); // of the keys in the catalogue
    QTest::addColumn<QString>("message");

    const auto row = [](const QStringList& models, const char* stem, const char* message) {
        QTest::newRow(qPrintable(models.join('+'))) << models << stem << message;
    };
    row({"hb4"}, "HB4", "HB4 connected");
    row({"hb2"}, "HB2", "HB2 connected");
    row({"hbx"}, "HBX", "HBX connected");
    row({"zeq-pro"}, "ZEQPRO", "ZEQ PRO connected");
    row({"zeq-io"}, "ZEQPRO", "ZEQ IO connected");
    row({"panel2v"}, "PANEL", "PANEL2V connected");
    row({"panel4v"}, "PANEL", "PANEL4V connected");
    row({"dsk10"}, "DSK10", "DSK10/DSK9 connected");
    row({"dsk6"}, "DSK10", "DSK6/DSK5 connected");
    row({"lmb1"}, "LMB1", "LMB-1 connected");
    row({"lmb2"}, "LMB2", "LMB-2 connected");
    row({"plt70"}, "PLT70", "PLT70 connected");
    row({"trk300-left", "trk300-right"}, "PLT70", "TRK300 connected");
    row({"trk900-left", "trk900-right"}, "PLT70", "TRK900 connected");
    row({"plt65"}, "PLT70", "PLT65 connected");
}

void tst_usbmodels::everyModel()
{
    QFETCH(QStringList, models);
    QFETCH(QString, stem);
    QFETCH(QString, message);
    MUST(publishFirmware(server, stem, scenario::offeredVersion, "image", scenario::changeLog));

    Program program(desktop);
    useRealBus(program);
    program.setVariable("http_proxy", server.proxy());
    QStringList options;
    for (const QString& model : models)
        options += scenario::unitOptions(program, model, {}, model);
    PluggedUnits units;
    MUST(units.plugIn(options));
    MUST(program.start());
    MUST(scenario::connectUnit(program, message));
    const QString offer = "Your unit current version: 2.3\nLatest version: 2.8";
    MUST(program.waitForBox(offerBox(offer, scenario::changeLog)));
    MUST(program.answer("No"));
    MUST(close(program));
    MUST(units.seeGivenBack());
    QCOMPARE(program.errorOutput(), QString());
    for (const QString& model : models) {
        QStringList told = scenario::journal(program, model);
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
    MUST(pressInVain(program));
    QCOMPARE(PluggedUnits::nodes(), nodes); // the system's driver was not taken off it
    MUST(close(program));
    QCOMPARE(scenario::journal(program), QStringList());
}

void tst_usbmodels::unitPluggedInLater()
{
    Program program(desktop);
    useRealBus(program);
    MUST(program.placeFile("SUPER_MEGA_UPDATE.sb", "image")); // so that no server is asked
    const QString unit = scenario::unitOptions(program, "plt70");
    PluggedUnits before;
    MUST(before.plugIn({unit}));
    MUST(before.unplug());
    MUST(program.start());
    MUST(pressInVain(program));

    PluggedUnits after;
    MUST(after.plugIn({unit}));
    MUST(scenario::connectUnit(program, "PLT70 connected"));
    MUST(close(program));
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
    MUST(program.placeFile("SUPER_MEGA_UPDATE.sb", "image"));
    PluggedUnits units;
    MUST(units.plugIn({scenario::unitOptions(program, "hb4")}));
    OtherProgram other;
    MUST(other.hold(QTest::currentDataTag()));
    MUST(program.start());
    if (!isFound) {
        MUST(pressInVain(program));
        MUST(other.letGo());
    }
    MUST(scenario::connectUnit(program, "HB4 connected"));
    MUST(close(program));
    MUST(other.letGo());
    MUST(units.seeGivenBack());
}

QTEST_GUILESS_MAIN(tst_usbmodels)

#include "tst_usbmodels.moc"
