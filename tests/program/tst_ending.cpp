// The ways out of the program: in every state it ends at once, with exit code 0, whatever it was waiting for.

#include "tests/harness/attempts.h"
#include "tests/harness/halfserver.h"
#include "tests/program/phases.h"
#include "tests/program/programtest.h"
#include "tests/support/silentserver.h"

#include <QtTest>

class tst_ending : public ServedProgramTest
{
    Q_OBJECT

private slots:
    void windowClosed_data();
    void windowClosed();
    void closedWhileTheServerIsSilent();
    void closedWhileTheImageArrives();
    void boxClosed_data();
    void boxClosed();
};

void tst_ending::windowClosed_data()
{
    QTest::addColumn<Phase>("phase");
    for (const Phase& phase : phases())
        if (!phase.isUnderABox)
            QTest::newRow(phase.name) << phase;
}

void tst_ending::windowClosed()
{
    QFETCH(Phase, phase);
    for (Attempts attempts; attempts.wantsAnother();) {
        Program program(desktop);
        MUST(reachPhase(phase, program, server));
        MUST(scenario::leave(program));
        MUST(attempts.judge(program, scenario::seeGivenBack(program)));
    }
}

void tst_ending::closedWhileTheServerIsSilent()
{
    SilentServer silent;
    Program program(desktop);
    MUST(scenario::askSilentServer(program, silent));
    MUST(scenario::leave(program));
}

void tst_ending::closedWhileTheImageArrives()
{
    HalfServer half;
    Program program(desktop);
    MUST(scenario::startWithUnit(program, half.address()));
    MUST(scenario::acceptAnyOffer(program));
    MUST(program.waitFor("the download under way", [](const View& view) {
        return view.text("labelTransfer") == text::transferDownload && view.value("progressBarTransfer") > 0;
    }));
    QVERIFY(!program.look().enabled("updateDeviceButton"));
    MUST(scenario::leave(program));
    QVERIFY(!program.fileContent(filename::image));
}

void tst_ending::boxClosed_data()
{
    QTest::addColumn<QString>("version"); // in the catalogue; "": there is no server
    QTest::addColumn<bool>("connects");   // the connection's box is answered first
    QTest::addColumn<bool>("ends");       // the box is the program's last
    QTest::newRow("the connection's box") << "28" << false << false;
    QTest::newRow("the offer") << "28" << true << false;
    QTest::newRow("up to date") << "23" << true << false;
    QTest::newRow("a network problem") << "" << true << true;
}

void tst_ending::boxClosed()
{
    QFETCH(QString, version);
    QFETCH(bool, connects);
    QFETCH(bool, ends);
    MUST(scenario::publish(server, "image", version));
    Program program(desktop);
    MUST(scenario::startWithUnit(program, version.isEmpty() ? QString(scenario::deadProxy) : server.proxy()));
    if (connects)
        MUST(scenario::connectUnit(program));
    else
        MUST(program.press("connect_button"));
    MUST(program.waitFor("the box", &View::hasBox));

    // The window behind a box cannot be closed before the box is.
    MUST(program.closeWindow());
    MUST(program.staysAway("no box", std::not_fn(&View::hasBox)));
    MUST(program.closeBox());
    if (ends) {
        MUST(program.waitForPromptExit(0));
        return;
    }
    if (!connects) { // the check that follows the connection opens the next one
        MUST(program.waitFor("the offer", [](const View& view) {
            return view.box().has_value() && view.box()->buttons.contains("Yes");
        }));
        MUST(program.closeBox());
    }
    MUST(program.waitForNoBox());
    MUST(scenario::leave(program));
}

QTEST_GUILESS_MAIN(tst_ending)

#include "tst_ending.moc"
