// The ends that come from outside: signals, and the loss of the display. In every phase the unit is given
// back.

#include "tests/harness/attempts.h"
#include "tests/harness/processtime.h"
#include "tests/program/phases.h"
#include "tests/program/programtest.h"

#include <QtTest>

#include <csignal>

namespace {

/// The program has ended by itself, before any limit, and has given the unit back.
Outcome seeOrderlyEnd(const Program& program)
{
    STEP(scenario::seeGivenBack(program));
    return program.hasQuit() ? Outcome() : Outcome("ended by its limit");
}

struct Signal
{
    const char* name;
    int number;
};

constexpr std::array signalsOfAnEnd{Signal{"SIGTERM", SIGTERM}, Signal{"SIGINT", SIGINT},
                                    Signal{"SIGHUP", SIGHUP}};

/// A program that is started while this exists finds the signal ignored, as behind nohup.
class Ignored
{
public:
    explicit Ignored(int number) : signal(number), before(std::signal(number, SIG_IGN)) {}
    ~Ignored() { std::signal(signal, before); }
    Q_DISABLE_COPY_MOVE(Ignored)

private:
    int signal;
    void (*before)(int);
};

} // namespace

class tst_exitsignals : public ServedProgramTest
{
    Q_OBJECT

private slots:
    void signalEndsTheProgram_data();
    void signalEndsTheProgram();
    void signalWhileTheHeaderIsAwaited_data() { addSignals(); }
    void signalWhileTheHeaderIsAwaited();
    void ignoredSignalStaysIgnored_data() { addSignals(); }
    void ignoredSignalStaysIgnored();
    void secondSignalEndsAtOnce_data() { addSignals(); }
    void secondSignalEndsAtOnce();
    void lostDisplay_data();
    void lostDisplay();

private:
    static void addSignals();

    Outcome begin() override;
};

Outcome tst_exitsignals::begin()
{
    for (const Signal& signal : signalsOfAnEnd) // or the program would inherit a SIGHUP ignored by nohup
        (void)std::signal(signal.number, SIG_DFL);
    STEP(ServedProgramTest::begin());
    return scenario::publish(server, "image");
}

void tst_exitsignals::addSignals()
{
    QTest::addColumn<int>("signal");
    for (const Signal& signal : signalsOfAnEnd)
        QTest::newRow(signal.name) << signal.number;
}

void tst_exitsignals::signalEndsTheProgram_data()
{
    QTest::addColumn<int>("signal");
    QTest::addColumn<Phase>("phase");
    for (const Signal& signal : signalsOfAnEnd)
        for (const Phase& phase : phases())
            QTest::addRow("%s %s", signal.name, phase.name) << signal.number << phase;
}

void tst_exitsignals::signalEndsTheProgram()
{
    QFETCH(int, signal);
    QFETCH(Phase, phase);
    for (Attempts attempts; attempts.wantsAnother();) {
        Program program(desktop);
        MUST(reachPhase(phase, program, server));
        program.sendSignal(signal);
        MUST(program.waitForPromptExit(0));
        MUST(attempts.judge(program, seeOrderlyEnd(program)));
    }
}

/// The worker is in a read without end: the unit cannot be closed under it.
void tst_exitsignals::signalWhileTheHeaderIsAwaited()
{
    QFETCH(int, signal);
    Program program(desktop);
    MUST(program.placeFile(filename::service, "image")); // so that no server is asked
    MUST(scenario::startWithUnit(program, server.proxy(), ",fault=header-never-comes"));
    MUST(scenario::fetchLog(program, "log-request number=1"));
    QTRY_VERIFY(isAsleep(program.processId())); // the worker is in its read
    program.sendSignal(signal);
    MUST(program.waitForPromptExit(0));
    QVERIFY(!scenario::journal(program).contains("closed"));
}

void tst_exitsignals::ignoredSignalStaysIgnored()
{
    QFETCH(int, signal);
    for (Attempts attempts; attempts.wantsAnother();) {
        Program program(desktop);
        {
            const Ignored ignored(signal);
            MUST(scenario::startWithUnit(program, server.proxy()));
        }
        QVERIFY(!program.handlesSignal(signal));
        program.sendSignal(signal);
        MUST(scenario::seeOffer(program)); // it goes on
        program.sendSignal(signal == SIGTERM ? SIGINT : SIGTERM);
        MUST(program.waitForPromptExit(0));
        MUST(attempts.judge(program, scenario::seeGivenBack(program)));
    }
}

void tst_exitsignals::secondSignalEndsAtOnce()
{
    QFETCH(int, signal);
    for (Attempts attempts; attempts.wantsAnother();) {
        Program program(desktop);
        MUST(scenario::startWithUnit(program, server.proxy(),
                                     ",fault=takes-nothing:60000,fault=takes-nothing-from:1"));
        MUST(scenario::pressUpdate(program));
        QTRY_VERIFY(scenario::journal(program).contains("not-taken"));
        const auto isGone = [&] { // several at once would be taken for one
            program.sendSignal(signal);
            return !program.isRunning();
        };
        QTRY_VERIFY(isGone());
        const Outcome killed = program.waitForDeathBy(signal);
        if (!killed.good())
            MUST(program.waitForExit(0)); // its limit may have been quicker than the signal
        MUST(attempts.judge(program, killed));
    }
}

void tst_exitsignals::lostDisplay_data()
{
    QTest::addColumn<Phase>("phase");
    for (const Phase& phase : phases())
        QTest::newRow(phase.name) << phase;
}

void tst_exitsignals::lostDisplay()
{
    QFETCH(Phase, phase);
    for (Attempts attempts; attempts.wantsAnother();) {
        Desktop ownDesktop;
        MUST(ownDesktop.start());
        Program program(ownDesktop);
        MUST(reachPhase(phase, program, server));
        MUST(program.loseDisplay());
        MUST(program.waitForPromptExit(1));
        MUST(attempts.judge(program, scenario::seeGivenBack(program)));
    }
}

QTEST_GUILESS_MAIN(tst_exitsignals)

#include "tst_exitsignals.moc"
