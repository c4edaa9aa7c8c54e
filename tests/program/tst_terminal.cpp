// The window of the terminal that the program runs in is closed: the program ends, and the unit is given
// back.

#include "tests/harness/attempts.h"
#include "tests/program/programtest.h"
#include "tests/program/scenario.h"

#include <QtTest>

#include <csignal>

using scenario::Deed;

class tst_terminal : public ServedProgramTest
{
    Q_OBJECT

private slots:
    void cleanup() { program.reset(); }

    void closed_data();
    void closed();
    void closedBehindAShell();

private:
    Outcome begin() override;
    Outcome start(const QString& fault = {});

    std::unique_ptr<Terminal> terminal;
    std::unique_ptr<Program> program;
};

Outcome tst_terminal::begin()
{
    (void)std::signal(SIGHUP, SIG_DFL); // or the program would inherit it ignored, as under nohup
    STEP(ServedProgramTest::begin());
    return scenario::publish(server, imageOf(scenario::longOnItsWay));
}

/// Starts the program in a terminal of its own.
Outcome tst_terminal::start(const QString& fault)
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
    QTest::addColumn<Deed>("reach");
    QTest::newRow("idle") << Deed(scenario::declineOffer);
    QTest::newRow("in the middle of the transfer") << Deed(scenario::streamImage);
}

void tst_terminal::closed()
{
    QFETCH(Deed, reach);
    for (Attempts attempts; attempts.wantsAnother();) {
        MUST(start());
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
    MUST(start(",fault=takes-nothing:60000,fault=takes-nothing-from:1"));
    MUST(scenario::pressUpdate(*program));
    QTRY_VERIFY(scenario::journal(*program).contains("not-taken"));
    program->sendSignal(SIGHUP);
    QTRY_VERIFY(!program->isPending(SIGHUP));
    terminal->close();
    MUST(program->waitForPromptExit(0));
}

QTEST_GUILESS_MAIN(tst_terminal)

#include "tst_terminal.moc"
