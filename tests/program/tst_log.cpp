// The unit's log, from the keys that offer it to the stored file.

#include "tests/program/programtest.h"
#include "tests/program/scenario.h"
#include "tests/support/filecontent.h"
#include "tests/support/silentserver.h"
#include "tests/support/texts.h"

#include <QtTest>

namespace {

constexpr int logSize = 30'000; ///< 477 parts

/// The log that the program stored; nothing: not exactly one file of that kind is there.
std::optional<QByteArray> storedLog(const Program& program)
{
    const QStringList files = QDir(program.ownPath(".")).entryList({filename::anyLog}, QDir::Files);
    return files.size() == 1 ? program.fileContent(files.first()) : std::nullopt;
}

bool offersLog(const View& view)
{
    return view.enabled("downloadLogFile") && view.widget("downloadLogFile")["visible"].toBool();
}

QStringList complaints(const Program& program)
{
    return scenario::journal(program).filter(QRegularExpression("^error "));
}

const BoxText completeBox = infoBox(text::logComplete);

} // namespace

class tst_log : public ProgramTest
{
    Q_OBJECT

private slots:
    void everyKindOfLayout_data();
    void everyKindOfLayout();
    void refusedLog();
    void oddLog_data();
    void oddLog();
    void stoppedLog_data();
    void stoppedLog();
    void closedInMidLog();
    void keysOfferNothing_data();
    void keysOfferNothing();
    void keysOfferNothingWhileTheServerIsAsked();
    void earlierLogsStay();

private:
    Outcome download(Program& program, const QString& fault, const models::Model& model = models::hb4);

    const QByteArray log = imageOf(logSize);
};

/// Connects a unit that holds the log, and starts its download.
Outcome tst_log::download(Program& program, const QString& fault, const models::Model& model)
{
    STEP(program.placeFile(filename::service, "image")); // so that no server is asked
    const QString held = program.scratchPath("unit.log");
    if (!writeFile(held, log))
        return Outcome("cannot write " + held);
    program.plugIn({scenario::unitOptions(program, model.option, ",log=" + held + fault)});
    STEP(program.start());
    STEP(scenario::askForLog(program, model.connected));
    return program.waitFor("the download's buttons", [](const View& view) {
        return !view.enabled("downloadLogFile") && view.widget("stopDownloadingFile")["visible"].toBool();
    });
}

void tst_log::everyKindOfLayout_data()
{
    QTest::addColumn<UnitType>("type");
    for (const UnitType type : {UNIT_HB4, UNIT_LMB2, UNIT_PLT70, UNIT_PLT65})
        QTest::newRow(models::of(type).option) << type;
}

void tst_log::everyKindOfLayout()
{
    QFETCH(UnitType, type);
    Program program(desktop);
    MUST(download(program, {}, models::of(type)));
    MUST(program.waitForBox(completeBox));
    const View view = program.look();
    QCOMPARE(view.value("progressBarTransfer"), 0);
    QVERIFY(!view.enabled("stopDownloadingFile"));
    QVERIFY(view.enabled("updateDeviceButton"));
    MUST(scenario::seeLastBox(program, completeBox));
    QCOMPARE(storedLog(program), std::optional(log));
    QCOMPARE(complaints(program), QStringList());
    QCOMPARE(program.errorOutput(), QString());
}

void tst_log::refusedLog()
{
    Program program(desktop);
    MUST(download(program, ",fault=no-log"));
    MUST(scenario::seeLastBox(program, completeBox));
    QCOMPARE(storedLog(program), std::optional(QByteArray("")));
    QCOMPARE(complaints(program), QStringList());
}

void tst_log::oddLog_data()
{
    QTest::addColumn<bool>("whole");
    QTest::newRow("wrong-count:2") << true;
    QTest::newRow("zero-parts") << true;
    QTest::newRow("stray-replies:5") << true;
    QTest::newRow("unknown-replies:5") << true;
    QTest::newRow("too-many-parts:3") << false;
    QTest::newRow("overlong-last-part:255") << false;
}

/// Whatever is odd about it, a log that comes to its end is stored and closes the program like any other.
void tst_log::oddLog()
{
    QFETCH(bool, whole);
    Program program(desktop);
    MUST(download(program, QString(",fault=") + QTest::currentDataTag()));
    MUST(scenario::seeLastBox(program, completeBox));
    const QByteArray stored = storedLog(program).value_or("no file");
    QVERIFY(stored.startsWith(log.left(logSize / 63 * 63)));
    QCOMPARE(stored == log, whole);
}

void tst_log::stoppedLog_data()
{
    QTest::addColumn<int>("stored"); // bytes
    QTest::addColumn<int>("percent");
    QTest::newRow("header-never-comes") << 0 << 0;
    QTest::newRow("takes-nothing:0") << 0 << 0; // the request is not even written
    QTest::newRow("stalls-after-part:100") << 6300 << 20;
    QTest::newRow("unplugged-at-part:101") << 6300 << 20;
}

void tst_log::stoppedLog()
{
    QFETCH(int, stored);
    QFETCH(int, percent);
    Program program(desktop);
    MUST(download(program, QString(",fault=") + QTest::currentDataTag()));
    const auto stands = [&](const View& view) {
        return view.value("progressBarTransfer") == percent && view.enabled("stopDownloadingFile") &&
               !view.enabled("updateDeviceButton");
    };
    MUST(program.waitFor("the download at its halt", stands));
    MUST(program.staysAway("an end by itself", [&](const View& view) { return !stands(view); }));
    MUST(program.press("stopDownloadingFile"));
    MUST(scenario::seeLastBox(program, completeBox));
    QCOMPARE(storedLog(program), std::optional(log.left(stored)));
}

void tst_log::closedInMidLog()
{
    Program program(desktop);
    MUST(download(program, ",fault=header-never-comes"));
    MUST(scenario::leave(program));
}

void tst_log::keysOfferNothing_data()
{
    QTest::addColumn<QStringList>("units");
    QTest::addColumn<QString>("message"); // "": nothing is connected
    QTest::addColumn<bool>("updates");
    QTest::newRow("before a unit is connected") << QStringList{"hb4"} << "" << false;
    QTest::newRow("for a pair of decks")
        << QStringList{"trk300-left", "trk300-right"} << "TRK300 connected" << false;
    QTest::newRow("once an update has begun")
        << QStringList{"hb4,fault=never-answers"} << "HB4 connected" << true;
}

void tst_log::keysOfferNothing()
{
    QFETCH(QStringList, units);
    QFETCH(QString, message);
    QFETCH(bool, updates);
    Program program(desktop);
    MUST(program.placeFile(filename::service, "image"));
    program.plugIn(units);
    MUST(program.start());
    if (!message.isEmpty())
        MUST(scenario::connectUnit(program, message));
    MUST(program.waitForNoBox());
    if (updates) {
        MUST(program.press("updateDeviceButton"));
        // The window manager holds a click back for a moment; keys would overtake it.
        MUST(program.waitFor("the update's beginning",
                             [](const View& view) { return !view.enabled("updateDeviceButton"); }));
    }
    MUST(scenario::pressLogKeys(program));
    MUST(program.staysAway("the log button", offersLog));
    MUST(scenario::leave(program));
}

/// An image that arrives in mid log would enable Update Device.
void tst_log::keysOfferNothingWhileTheServerIsAsked()
{
    SilentServer silent;
    Program program(desktop);
    MUST(scenario::askSilentServer(program, silent));
    MUST(scenario::pressLogKeys(program));
    MUST(program.staysAway("the log button", offersLog));
    MUST(scenario::leave(program));
}

/// Logs of every second in which the program may start: its own gets another name.
void tst_log::earlierLogsStay()
{
    constexpr int seconds = 300;
    Program program(desktop);
    QStringList earlier;
    const QDateTime now = QDateTime::currentDateTime();
    for (int second = 0; second < seconds; ++second) {
        earlier += now.addSecs(second).toString("yyyy-MM-dd_hh_mm_ss") + "_log.enc";
        MUST(program.placeFile(earlier.last(), "pulled before"));
    }
    MUST(program.start());
    MUST(scenario::leave(program));
    for (const QString& name : qAsConst(earlier))
        QCOMPARE(program.fileContent(name), std::optional(QByteArray("pulled before")));
    const QStringList all = QDir(program.ownPath(".")).entryList({filename::anyLog}, QDir::Files);
    QCOMPARE(all.size(), seconds + 1);
    QCOMPARE(all.filter(QRegularExpression("^[-0-9]{10}(_[0-9]{2}){3}-2_log\\.enc$")).size(), 1);
}

QTEST_GUILESS_MAIN(tst_log)

#include "tst_log.moc"
