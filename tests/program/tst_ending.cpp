// The ways out of the program: in every state it ends at once, with exit code 0, whatever it was waiting for.

#include "tests/harness/attempts.h"
#include "tests/harness/halfserver.h"
#include "tests/harness/program.h"
#include "tests/harness/updateserver.h"
#include "tests/program/scenario.h"
#include "tests/support/silentserver.h"
#include "tests/support/texts.h"

#include <QtTest>

namespace {

constexpr int smallSize = 6000;

using State = Outcome (*)(Program&);

} // namespace

Q_DECLARE_METATYPE(State)

class tst_ending : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();

    void windowClosed_data();
    void windowClosed();
    void closedWhileTheServerIsSilent();
    void closedWhileTheHostIsLookedUp();
    void closedWhileTheImageArrives();
    void boxClosed_data();
    void boxClosed();

private:
    Desktop desktop;
    UpdateServer server;
    QByteArray image;
};

void tst_ending::initTestCase()
{
    image = imageOf(60'000);
    MUST(desktop.start());
    MUST(server.start());
}

void tst_ending::windowClosed_data()
{
    QTest::addColumn<QString>("more"); // options of the unit
    QTest::addColumn<State>("reach");
    QTest::addColumn<int>("size"); // of the image
    QTest::newRow("right after the start") << "" << State([](Program&) { return Outcome(); }) << smallSize;
    QTest::newRow("after a declined offer") << "" << State(scenario::declineOffer) << smallSize;
    QTest::newRow("with an image to send")
        << "" << State([](Program& program) { return scenario::connectAndDownload(program); }) << smallSize;
    QTest::newRow("while the unit does not answer")
        << ",fault=never-answers" << State(scenario::pressUpdate) << smallSize;
    QTest::newRow("in the middle of the transfer")
        << "" << State(scenario::streamImage) << scenario::longOnItsWay;
    QTest::newRow("during the installation")
        << scenario::silentInstallation << State(scenario::install) << smallSize;
}

void tst_ending::windowClosed()
{
    QFETCH(QString, more);
    QFETCH(State, reach);
    QFETCH(int, size);
    const QByteArray sent = imageOf(size);
    MUST(publishFirmware(server, "HB4", scenario::offeredVersion, sent, scenario::changeLog));
    for (Attempts attempts; attempts.wantsAnother();) {
        Program program(desktop);
        MUST(scenario::startWithUnit(program, server.proxy(), more));
        MUST(reach(program));
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

void tst_ending::closedWhileTheHostIsLookedUp()
{
    for (Attempts attempts; attempts.wantsAnother();) {
        Program program(desktop);
        MUST(scenario::lookHostUp(program));
        MUST(scenario::leave(program));
        MUST(attempts.judge(program, scenario::seeGivenBack(program))); // though the look-up held the end up
    }
}

void tst_ending::closedWhileTheImageArrives()
{
    HalfServer half;
    Program program(desktop);
    MUST(scenario::startWithUnit(program, half.address()));
    MUST(scenario::connectUnit(program));
    MUST(program.waitFor("the offer", [](const View& view) { return view.boxCount() == 1; }));
    MUST(program.answer("Yes"));
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
    MUST(publishFirmware(server, "HB4", version, image, scenario::changeLog));
    Program program(desktop);
    MUST(scenario::startWithUnit(program, version.isEmpty() ? QString(scenario::deadProxy) : server.proxy()));
    if (connects)
        MUST(scenario::connectUnit(program));
    else
        MUST(program.press("connect_button"));
    MUST(program.waitFor("the box", [](const View& view) { return view.boxCount() == 1; }));

    // The window behind a box cannot be closed before the box is.
    MUST(program.closeWindow());
    MUST(program.staysAway("no box", [](const View& view) { return view.boxCount() == 0; }));
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
