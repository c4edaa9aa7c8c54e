// A unit that vanishes from a real bus, or lives on there without taking anything: the program neither
// crashes nor spins, its window can be used, and it ends cleanly.

#include "tests/program/programtest.h"
#include "tests/program/scenario.h"
#include "tests/support/filecontent.h"
#include "tests/support/texts.h"
#include "tests/usb/pluggedunits.h"

#include <QtTest>

#include <csignal>

using scenario::Deed;

namespace {

/// A program that spins takes the whole processor; one whose polls fail at once takes a part of it.
constexpr int highestLoad = 75;
/// A busy host makes an emulated processor look busier than it is, for a while.
constexpr int mostLooks = 5;

constexpr int shortImage = 6000;
constexpr const char* longInstallation = ",install-ms=3600000";

/// Each step writes, and once more after a failure: so long does the HID library wait for a unit. Nothing
/// tells when the kernel has enough and a write blocks; that is waited for by the clock and can only miss a
/// defect.
constexpr int longestStepMs = 2200;

Outcome connectOnly(Program& program)
{
    return scenario::connectUnit(program);
}

Outcome awaitAnswer(Program& program)
{
    STEP(scenario::updateByHand(program));
    return program.waitFor("the request at the unit", [&](const View&) {
        return !scenario::journal(program).filter(QRegularExpression("^unanswered")).isEmpty();
    });
}

Outcome streamImage(Program& program)
{
    STEP(scenario::updateByHand(program));
    return scenario::awaitStream(program);
}

Outcome install(Program& program)
{
    STEP(scenario::updateByHand(program));
    return scenario::awaitInstallation(program);
}

Outcome awaitLogHeader(Program& program)
{
    STEP(scenario::askForLog(program));
    return program.waitFor("the download's button",
                           [](const View& view) { return view.enabled("stopDownloadingFile"); });
}

/// Nothing is said of it, and the window can be closed.
Outcome seeQuietEnd(Program& program)
{
    STEP(program.staysAway("a box", &View::hasBox));
    return scenario::closeAndWait(program);
}

} // namespace

class tst_usbunplug : public ProgramTest
{
    Q_OBJECT

private slots:
    void unplugged_data();
    void unplugged();
    void vanishesByItself_data();
    void vanishesByItself();
    void hangsInMidTransfer();
    void endedInMidWork_data();
    void endedInMidWork();
    void endedBySignalInABlockedWrite();

private:
    static void addWork();
    static Outcome reachRow(Program& program, PluggedUnits& units);
    static Outcome start(Program& program, PluggedUnits& units, const QString& more,
                         int imageSize = shortImage);
};

Outcome tst_usbunplug::start(Program& program, PluggedUnits& units, const QString& more, int imageSize)
{
    useRealBus(program);
    STEP(program.placeFile(filename::service, imageOf(imageSize))); // so that no server is asked
    STEP(units.plugIn({scenario::unitOptions(program, "hb4", more)}));
    return program.start();
}

/// Adds the columns of reachRow().
void tst_usbunplug::addWork()
{
    QTest::addColumn<QString>("more"); // options of the unit
    QTest::addColumn<Deed>("reach");
    QTest::addColumn<int>("imageSize");
}

/// Starts the program and has it do what the row says.
Outcome tst_usbunplug::reachRow(Program& program, PluggedUnits& units)
{
    QFETCH(QString, more);
    QFETCH(Deed, reach);
    QFETCH(int, imageSize);
    STEP(start(program, units, more, imageSize));
    return reach(program);
}

void tst_usbunplug::unplugged_data()
{
    addWork();
    QTest::newRow("idle") << "" << Deed(connectOnly) << shortImage;
    QTest::newRow("while an answer is awaited") << ",fault=never-answers" << Deed(awaitAnswer) << shortImage;
    QTest::newRow("in the stream") << "" << Deed(streamImage) << scenario::longOnItsWay;
    QTest::newRow("during the installation") << longInstallation << Deed(install) << shortImage;
    QTest::newRow("while a log header is awaited")
        << ",fault=header-never-comes" << Deed(awaitLogHeader) << shortImage;
}

void tst_usbunplug::unplugged()
{
    Program program(desktop);
    PluggedUnits units;
    MUST(reachRow(program, units));
    MUST(units.unplug());
    int load = 100;
    for (int looks = 0; looks < mostLooks && load >= highestLoad; ++looks) {
        load = processorLoad(program);
        qInfo("processor time: %d %%", load);
    }
    QVERIFY2(load < highestLoad, qPrintable(QString("%1 %").arg(load)));
    MUST(seeQuietEnd(program));
}

void tst_usbunplug::vanishesByItself_data()
{
    QTest::addColumn<Deed>("reach");
    QTest::newRow("unplugged-at:1") << Deed(scenario::updateByHand);
    QTest::newRow("unplugged-at:5") << Deed(scenario::updateByHand);
    // The first one: a later one may never come, as the program waits 100 ms for each, too short for a busy
    // host.
    QTest::newRow("unplugged-at-part:1") << Deed(awaitLogHeader);
}

void tst_usbunplug::vanishesByItself()
{
    QFETCH(Deed, reach);
    QTemporaryDir folder;
    const QString log = folder.filePath("unit.log");
    QVERIFY(writeFile(log, imageOf(shortImage)));
    Program program(desktop);
    PluggedUnits units;
    MUST(start(program, units, ",log=" + log + ",fault=" + QTest::currentDataTag()));
    MUST(reach(program));
    QTRY_VERIFY(!scenario::journal(program).filter(QRegularExpression("^unplugged")).isEmpty());
    MUST(seeQuietEnd(program));
}

void tst_usbunplug::hangsInMidTransfer()
{
    const bool answersBetweenWrites = flavour() == "libusb"; // hidraw: 5.1 s a write
    Program program(desktop);
    PluggedUnits units;
    MUST(start(program, units, "", scenario::longOnItsWay));
    MUST(streamImage(program));
    units.freeze();
    // The kernel takes a few more reports, and nothing tells when it has enough of them.
    QTest::qWait(limits::lengthened(longestStepMs));
    for (int looks = 0; answersBetweenWrites && looks < 3; ++looks)
        QVERIFY(program.look().enabled("progressBarTransfer"));
    MUST(scenario::closeAndWait(program));
}

void tst_usbunplug::endedInMidWork_data()
{
    addWork();
    QTest::addColumn<int>("signal"); // 0: the window is closed
    int row = 0;
    const auto add = [&row](const char* name, const QString& more, const Deed& reach, int imageSize,
                            int signal) {
        if (takesRow(row++))
            QTest::newRow(name) << more << reach << imageSize << signal;
    };
    add("window closed, in the stream", "", streamImage, scenario::longOnItsWay, 0);
    add("SIGINT, in the stream", "", streamImage, scenario::longOnItsWay, SIGINT);
    add("SIGHUP, during the installation", longInstallation, install, shortImage, SIGHUP);
    add("window closed, during the installation", longInstallation, install, shortImage, 0);
    add("SIGTERM, idle", "", connectOnly, shortImage, SIGTERM);
}

/// The unit stays plugged in, and the system has it again.
void tst_usbunplug::endedInMidWork()
{
    QFETCH(int, signal);
    Program program(desktop);
    PluggedUnits units;
    MUST(reachRow(program, units));
    if (signal == 0)
        MUST(program.closeWindow());
    else
        program.sendSignal(signal);
    MUST(program.waitForExit(0));
    MUST(units.seeGivenBack());
}

/// The HID library gives up after a while, or the program does; either way the system has the unit again.
void tst_usbunplug::endedBySignalInABlockedWrite()
{
    Program program(desktop);
    PluggedUnits units;
    MUST(start(program, units, "", scenario::longOnItsWay));
    MUST(streamImage(program));
    units.freeze();
    QTest::qWait(limits::lengthened(longestStepMs));
    QElapsedTimer passed;
    passed.start();
    program.sendSignal(SIGTERM);
    MUST(program.waitForExit(0));
    qInfo("ended after %lld ms", passed.elapsed());
    MUST(units.seeGivenBack());
}

QTEST_GUILESS_MAIN(tst_usbunplug)

#include "tst_usbunplug.moc"
