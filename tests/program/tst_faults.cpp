// A unit that misbehaves: what the user is told of it, and what the window shows afterwards.

#include "tests/program/programtest.h"
#include "tests/program/scenario.h"
#include "tests/support/transferfaults.h"

#include <QtTest>

namespace {

/// Looks at a program that follows an installation: each waits for a poll of 100 ms.
constexpr int somePolls = 6;

/// A label and the bar that belongs to it.
struct Display
{
    QString text;
    bool enabled;
    int percent; ///< negative: creeping, anything from 1 to 99
};

bool shows(const View& view, const QString& label, const QString& bar, const Display& display)
{
    const int percent = view.value(bar);
    const bool right = display.percent < 0 ? percent >= 1 && percent <= 99 : percent == display.percent;
    return right && view.text(label) == display.text && view.enabled(label) == display.enabled &&
           view.enabled(bar) == display.enabled;
}

const Display idle{text::updateIdle, false, 0};

/// What belongs to a label's text at the end of a transfer that went wrong.
Display displayOf(const char* label)
{
    if (label == nullptr)
        return {text::transferDownload, true, 100};
    if (label == QString(text::transferInProgress))
        return {label, true, 100};
    if (label == QString(text::transferCompleted))
        return {label, false, 100};
    if (label == QString(text::updateInProgress))
        return {label, true, -1};
    return idle;
}

} // namespace

Q_DECLARE_METATYPE(Display)

class tst_faults : public ServedProgramTest
{
    Q_OBJECT

private slots:
    void transfer_data();
    void transfer();
    void unitThatCannotBeUsed_data();
    void unitThatCannotBeUsed();
    void loneDeckBlocksConnect();
    void unitThatSendsNoVersion();
    void silentInstallationStopsAt99();
    void repeatedComplaintOpensFurtherBoxes();
    void repeatedSuccessEndsTheProgram();
    void imageThatCannotBeSent_data();
    void imageThatCannotBeSent();

private:
    Outcome begin() override;

    const QByteArray image = imageOf(6000);
};

Outcome tst_faults::begin()
{
    STEP(ServedProgramTest::begin());
    return scenario::publish(server, image);
}

void tst_faults::transfer_data()
{
    QTest::addColumn<Display>("transfer");
    QTest::addColumn<Display>("update");
    for (const TransferFault& fault : transferFaults())
        QTest::newRow(fault.option) << displayOf(fault.transfer) << displayOf(fault.update);
}

void tst_faults::transfer()
{
    QFETCH(Display, transfer);
    QFETCH(Display, update);
    const TransferFault& expected = transferFaultOfRow();
    const auto shown = [&](const View& view) {
        return shows(view, "labelTransfer", "progressBarTransfer", transfer) &&
               shows(view, "labelUpdate", "progressBarUpdate", update) &&
               !view.enabled("updateDeviceButton") && !view.enabled("connect_button");
    };

    Program program(desktop);
    const QString fault = QString(",fault=") + QTest::currentDataTag();
    MUST(scenario::startWithUnit(program, server.proxy(), fault));
    MUST(scenario::pressUpdate(program));
    if (expected.box != nullptr) {
        MUST(program.waitForBox(errorBox(expected.box, expected.title)));
        MUST(program.waitFor("the window under the box", shown));
        MUST(program.answer("Ok"));
    }
    MUST(program.waitFor("the window afterwards", shown));
    MUST(program.staysAway("another box", &View::hasBox, somePolls));
    QVERIFY2(shown(program.look()), qPrintable(program.look().describe()));

    QStringList journal{"opened"};
    if (!expected.journal.isEmpty() && expected.journal.first() != "unplugged")
        journal += scenario::faultlessJournal(image).at(1); // the request
    QTRY_COMPARE(scenario::journal(program), journal + expected.journal);
    MUST(scenario::leave(program));
}

void tst_faults::unitThatCannotBeUsed_data()
{
    QTest::addColumn<QString>("unit");
    QTest::addColumn<QString>("line"); // how it begins, on standard error, once for each press
    QTest::newRow("cannot be opened") << "hb4,fault=cannot-open"
                                      << "Unit 3a5d:0a21 cannot be opened";
    QTest::newRow("is not permitted") << "hb4,fault=no-permission"
                                      << "The name of device 3a5d:0a21 cannot be read";
    QTest::newRow("has a trailing blank in its name") << "hb4,product=HB4 "
                                                      << "Device 3a5d:0a21 calls itself \"HB4 \"";
    QTest::newRow("has an unknown name") << "plt65,product=Keyboard"
                                         << "Device 3a5d:2c01 calls itself \"Keyboard\"";
}

void tst_faults::unitThatCannotBeUsed()
{
    QFETCH(QString, unit);
    QFETCH(QString, line);
    Program program(desktop);
    program.plugIn({unit});
    MUST(program.start());
    const View before = program.look();
    for (int press = 1; press <= 2; ++press)
        MUST(scenario::connectInVain(program));
    QCOMPARE(program.look().describe(), before.describe());
    MUST(scenario::leave(program));
    const QStringList said = program.errorOutput().split('\n');
    QCOMPARE(said.size(), 2);
    for (const QString& one : said)
        QVERIFY2(one.startsWith(line), qPrintable(one));
}

void tst_faults::loneDeckBlocksConnect()
{
    Program program(desktop);
    program.plugIn({"trk300-left", "plt65"});
    MUST(program.start());
    MUST(scenario::connectInVain(program));

    MUST(program.press("connect_button"));
    MUST(program.staysAway("a box after the second press", &View::hasBox));
    QVERIFY(program.look().enabled("connect_button"));
    MUST(scenario::leave(program));
}

void tst_faults::unitThatSendsNoVersion()
{
    Program program(desktop);
    MUST(scenario::startWithUnit(program, server.proxy(), ",fault=no-version-report"));
    MUST(scenario::connectUnit(program));
    MUST(scenario::acceptOffer(program, "0.0"));
    MUST(program.press("updateDeviceButton"));
    MUST(scenario::seeFinished(program));
    QCOMPARE(scenario::receivedImage(program), image);
}

void tst_faults::silentInstallationStopsAt99()
{
    Program program(desktop);
    MUST(scenario::startWithUnit(program, server.proxy(), scenario::silentInstallation));
    MUST(scenario::pressUpdate(program));
    const auto creepingAt = [](int percent) {
        return [percent](const View& view) {
            return view.value("progressBarUpdate") >= percent &&
                   shows(view, "labelUpdate", "progressBarUpdate", displayOf(text::updateInProgress));
        };
    };
    MUST(program.waitFor("the bar at its start", creepingAt(2)));
    QVERIFY(
        shows(program.look(), "labelTransfer", "progressBarTransfer", displayOf(text::transferCompleted)));
    // A step every second poll, and a poll waits 100 ms: about 20 s.
    MUST(program.waitFor("the bar at 99", creepingAt(99)));
    const auto elsewhere = [&](const View& view) { return !creepingAt(99)(view) || view.boxCount() != 0; };
    MUST(program.staysAway("anything else than 99 %", elsewhere, somePolls));
    MUST(scenario::leave(program));
}

void tst_faults::repeatedComplaintOpensFurtherBoxes()
{
    constexpr int mostBoxes = 16;
    Program program(desktop);
    const QString fault = ",fault=wrong-digest,repeats-outcome=yes,period-ms=40";
    MUST(scenario::startWithUnit(program, server.proxy(), fault));
    MUST(scenario::pressUpdate(program));
    MUST(program.waitFor("a pile of boxes", [](const View& view) { return view.boxCount() == mostBoxes; }));
    MUST(program.staysAway(
        "more boxes", [](const View& view) { return view.boxCount() > mostBoxes; }, somePolls));
    MUST(program.waitForBox(errorBox(text::wrongDigest)));
}

void tst_faults::repeatedSuccessEndsTheProgram()
{
    Program program(desktop);
    MUST(scenario::startWithUnit(program, server.proxy(), ",repeats-outcome=yes,period-ms=40"));
    MUST(scenario::pressUpdate(program));
    MUST(program.waitFor("a second box", [](const View& view) { return view.boxCount() > 1; }));
    MUST(scenario::seeLastBox(program, scenario::finishedBox));
}

void tst_faults::imageThatCannotBeSent_data()
{
    QTest::addColumn<bool>("isThere");
    QTest::newRow("was taken away") << false;
    QTest::newRow("is empty") << true;
}

void tst_faults::imageThatCannotBeSent()
{
    QFETCH(bool, isThere);
    Program program(desktop);
    MUST(scenario::startWithUnit(program, server.proxy()));
    MUST(scenario::connectAndDownload(program));
    QVERIFY(QFile::remove(program.ownPath(filename::image)));
    if (isThere)
        MUST(program.placeFile(filename::image, {}));
    MUST(program.press("updateDeviceButton"));
    MUST(program.waitForBox(errorBox(text::noImage)));
    MUST(program.answer("Ok"));
    MUST(program.staysAway("another box", &View::hasBox));
    QCOMPARE(scenario::journal(program), QStringList{"opened"});
    MUST(scenario::leave(program));
}

QTEST_GUILESS_MAIN(tst_faults)

#include "tst_faults.moc"
