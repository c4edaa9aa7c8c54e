// A unit's log, downloaded over a real bus.

#include "tests/harness/waiting.h"
#include "tests/program/programtest.h"
#include "tests/program/scenario.h"
#include "tests/support/filecontent.h"
#include "tests/support/texts.h"
#include "tests/usb/pluggedunits.h"

#include <QtTest>

namespace {

constexpr int mostAttempts = 20;
constexpr int looksAtAStall = 300; ///< a log of few parts is over in some ten

/// Whether the closing box opens while one looks on.
bool seesTheEnd(Program& program)
{
    for (int looks = 0; looks < looksAtAStall; ++looks) {
        if (program.look().hasBox())
            return true;
        letOthersRun();
    }
    return false;
}

} // namespace

class tst_usblog : public ProgramTest
{
    Q_OBJECT

private slots:
    void wholeLog_data();
    void wholeLog();

private:
    void pullLog(bool& isStored);
};

void tst_usblog::wholeLog_data()
{
    constexpr int parts = 4; // few: see wholeLog
    constexpr int partSize = 63;
    QTest::addColumn<UnitType>("type");
    QTest::addColumn<QString>("more"); // options of the unit
    QTest::addColumn<int>("size");     // bytes that arrive
    QTest::newRow("header first") << UNIT_LMB2 << "" << parts * partSize + 10;
    QTest::newRow("header last") << UNIT_PLT65 << "" << parts * partSize + 10;
    QTest::newRow("no log") << UNIT_LMB2 << ",fault=no-log" << 0;
}

/// The program waits 100 ms for each part and then no more, which is too short for a guest whose host is
/// busy: a log that stands still is given up, as its user would, and pulled again.
void tst_usblog::wholeLog()
{
    bool isStored = false;
    for (int attempt = 0; attempt < mostAttempts && !isStored && !QTest::currentTestFailed(); ++attempt)
        pullLog(isStored);
    QVERIFY(isStored);
}

void tst_usblog::pullLog(bool& isStored)
{
    QFETCH(UnitType, type);
    QFETCH(QString, more);
    QFETCH(int, size);
    const QByteArray log = imageOf(size);

    Program program(desktop);
    useRealBus(program);
    MUST(program.placeFile(filename::service, "image")); // so that no server is asked
    const QString logPath = program.scratchPath("unit.log");
    QVERIFY(writeFile(logPath, log));
    PluggedUnits units;
    MUST(units.plugIn({scenario::unitOptions(program, models::of(type).option, ",log=" + logPath + more)}));
    MUST(program.start());
    MUST(connectOnceHeardOf(program, models::of(type).connected));
    MUST(program.waitForNoBox());
    MUST(scenario::pressLogKeys(program));
    MUST(program.press("downloadLogFile"));
    const bool isStalled = !seesTheEnd(program);
    if (isStalled)
        MUST(program.press("stopDownloadingFile"));
    MUST(program.waitForBox(infoBox(text::logComplete)));
    MUST(program.answer("Ok"));
    MUST(program.waitForExit(0));
    MUST(units.seeGivenBack());
    if (isStalled)
        return;

    const QStringList stored = QDir(program.ownPath(".")).entryList({filename::anyLog}, QDir::Files);
    QCOMPARE(stored.size(), 1);
    QVERIFY(program.fileContent(stored.first()) == log);
    QCOMPARE(scenario::journal(program).filter(QRegularExpression("^error ")), QStringList());
    QCOMPARE(program.errorOutput(), QString());
    isStored = true;
}

QTEST_GUILESS_MAIN(tst_usblog)

#include "tst_usblog.moc"
