// The window of the terminal that the program runs in is closed: the program ends, and the unit is given
// back.

#include "tests/harness/attempts.h"
#include "tests/harness/program.h"
#include "tests/harness/updateserver.h"
#include "tests/program/scenario.h"

#include <QtTest>

#include <csignal>

using State = Outcome (*)(Program&);

Q_DECLARE_METATYPE(State)

class tst_terminal : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanup() { program.reset(); }

    void closed_data();
    void closed();
    void closedBehindAShell();

private:
    Outcome begin(const QString& fault = {});

    Desktop desktop;
    UpdateServer server;
    std::unique_ptr<Terminal> terminal;
    std::unique_ptr<Program> program;
};

void tst_terminal::initTestCase()
{
    (void)std::signal(SIGHUP, SIG_DFL); // or the program would inherit it ignored, as under nohup
    MUST(desktop.start());
    MUST(server.start());
    MUST(publishFirmware(server, "HB4", scenario::offeredVersion, imageOf(scenario::longOnItsWay),
                         scenario::changeLog));
}

/// Starts the program in a terminal of its own.
Outcome tst_terminal::begin(const QString& fault)
{
    terminal = std::make_unique<Terminal>();
    if (terminal->programsEnd() < 0)
        return Outcome("no terminal left");
    program = std::make_unique<Program>(desktop);
    program->setTerminal(*terminal);
    return scenario::startWithUnit(*program, server.proxy(), fault);
}

void tst_terminal::closed_data()
{
    QTest::addColumn<State>("reach");
    QTest::newRow("idle") << State(scenario::declineOffer);
    QTest::newRow("in the middle of the transfer") << State(scenario::streamImage);
}

void tst_terminal::closed()
{
    QFETCH(State, reach);
    for (Attempts attempts; attempts.wantsAnother();) {
        MUST(begin());
        MUST(reach(*program));
        program->watchEnd();
        terminal->close();
        MUST(program->waitForPromptExit(0));
        MUST(attempts.judge(*program, program->hasQuit() ? scenario::seeGivenBack(*program)
                                                         : Outcome("ended by its limit")));
    }
}

/// The shell tells of it, and while the program is still on its way out, the system does. A write that is
/// blocked keeps it there.
void tst_terminal::closedBehindAShell()
{
    MUST(begin(",fault=takes-nothing:60000,fault=takes-nothing-from:1"));
    MUST(scenario::pressUpdate(*program));
    QTRY_VERIFY(scenario::journal(*program).contains("not-taken"));
    program->sendSignal(SIGHUP);
    QTRY_VERIFY(!program->isPending(SIGHUP));
    terminal->close();
    MUST(program->waitForPromptExit(0));
}

QTEST_GUILESS_MAIN(tst_terminal)

#include "tst_terminal.moc"
