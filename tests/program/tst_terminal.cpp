// The window of the terminal that the program runs in is closed: the program ends, and the unit is given
// back.

#include "program.h"
#include "scenario.h"
#include "updateserver.h"

#include <QtTest>

#include <csignal>

using State = Outcome (*)(Program&);

Q_DECLARE_METATYPE(State)

class tst_terminal : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();

    void closed_data();
    void closed();

private:
    Desktop desktop;
    UpdateServer server;
};

void tst_terminal::initTestCase()
{
    MUST(desktop.start());
    MUST(server.start());
    MUST(publishFirmware(server, "HB4", scenario::offeredVersion, scenario::image(scenario::longOnItsWay),
                         scenario::changeLog));
}

void tst_terminal::closed_data()
{
    QTest::addColumn<State>("reach");
    QTest::addColumn<bool>("shellTells");
    QTest::newRow("idle") << State(scenario::declineOffer) << false;
    QTest::newRow("idle, told by the shell first") << State(scenario::declineOffer) << true;
    QTest::newRow("in the middle of the transfer") << State(scenario::streamImage) << false;
    QTest::newRow("in the middle of the transfer, told by the shell first")
        << State(scenario::streamImage) << true;
}

/// The system tells of it; a shell in between does so, too, and goes.
void tst_terminal::closed()
{
    QFETCH(State, reach);
    QFETCH(bool, shellTells);
    Terminal terminal;
    QVERIFY(terminal.programsEnd() >= 0);
    Program program(desktop);
    program.setTerminal(terminal);
    MUST(scenario::startWithUnit(program, server.proxy()));
    MUST(reach(program));
    if (shellTells)
        program.sendSignal(SIGHUP);
    terminal.close();
    MUST(program.waitForPromptExit(0));
    QCOMPARE(scenario::lastWord(program), QString("closed"));
    QVERIFY(program.hasQuit());
}

QTEST_GUILESS_MAIN(tst_terminal)

#include "tst_terminal.moc"
