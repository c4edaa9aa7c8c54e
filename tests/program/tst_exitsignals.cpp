// The ends that come from outside: signals, and the loss of the display. In every phase the unit is given
// back.

#include "tests/harness/attempts.h"
#include "tests/harness/processtime.h"
#include "tests/harness/program.h"
#include "tests/harness/updateserver.h"
#include "tests/program/scenario.h"
#include "tests/support/models.h"
#include "tests/support/texts.h"

#include <QtTest>

#include <csignal>

namespace {

using State = Outcome (*)(Program&);

struct Phase
{
    const char* name;
    const char* fault; ///< of the unit, as an option
    State reach;
};

Outcome doNothing(Program&)
{
    return {};
}

Outcome seeConnectionsBox(Program& program)
{
    STEP(program.press("connect_button"));
    return program.waitForBox(infoBox(models::of(UNIT_HB4).connected));
}

Outcome seeOffer(Program& program)
{
    STEP(scenario::connectUnit(program));
    return program.waitFor("the offer", [](const View& view) { return view.boxCount() == 1; });
}

/// The program has ended by itself, before any limit, and has given the unit back.
Outcome seeOrderlyEnd(const Program& program)
{
    STEP(scenario::seeGivenBack(program));
    return program.hasQuit() ? Outcome() : Outcome("ended by its limit");
}

Outcome connectAndDownload(Program& program)
{
    return scenario::connectAndDownload(program);
}

Outcome seeRefusal(Program& program)
{
    STEP(scenario::pressUpdate(program));
    return program.waitFor("the box", [](const View& view) { return view.boxCount() == 1; });
}

constexpr std::array phases{
    Phase{"right after the start", "", doNothing},
    Phase{"under the connection's box", "", seeConnectionsBox},
    Phase{"under the offer", "", seeOffer},
    Phase{"after a declined offer", "", scenario::declineOffer},
    Phase{"with an image to send", "", connectAndDownload},
    Phase{"while the unit does not answer", ",fault=never-answers", scenario::pressUpdate},
    Phase{"under a refusal's box", ",fault=refuses-timeout", seeRefusal},
    Phase{"in the middle of the transfer", "", scenario::streamImage},
    Phase{"during the installation", scenario::silentInstallation, scenario::install},
};

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

Q_DECLARE_METATYPE(State)

class tst_exitsignals : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();

    void signalEndsTheProgram_data();
    void signalEndsTheProgram();
    void signalWhileTheHostIsLookedUp();
    void signalWhileTheHeaderIsAwaited_data();
    void signalWhileTheHeaderIsAwaited();
    void ignoredSignalStaysIgnored_data();
    void ignoredSignalStaysIgnored();
    void secondSignalEndsAtOnce_data();
    void secondSignalEndsAtOnce();
    void lostDisplay_data();
    void lostDisplay();
    void lostDisplayWhileTheHostIsLookedUp();

private:
    void addSignals();
    void addPhases(const QString& before, int signal);

    Desktop desktop;
    UpdateServer server;
};

void tst_exitsignals::initTestCase()
{
    for (const Signal& signal : signalsOfAnEnd) // or the program would inherit a SIGHUP ignored by nohup
        (void)std::signal(signal.number, SIG_DFL);
    MUST(desktop.start());
    MUST(server.start());
    MUST(publishFirmware(server, "HB4", scenario::offeredVersion, imageOf(60'000), scenario::changeLog));
}

void tst_exitsignals::addSignals()
{
    QTest::addColumn<int>("signal");
    for (const Signal& signal : signalsOfAnEnd)
        QTest::newRow(signal.name) << signal.number;
}

void tst_exitsignals::addPhases(const QString& before, int signal)
{
    for (const Phase& phase : phases)
        QTest::newRow(qPrintable(before + phase.name)) << signal << QString(phase.fault) << phase.reach;
}

void tst_exitsignals::signalEndsTheProgram_data()
{
    QTest::addColumn<int>("signal");
    QTest::addColumn<QString>("fault");
    QTest::addColumn<State>("reach");
    for (const Signal& signal : signalsOfAnEnd)
        addPhases(QString(signal.name) + ' ', signal.number);
}

void tst_exitsignals::signalEndsTheProgram()
{
    QFETCH(int, signal);
    QFETCH(QString, fault);
    QFETCH(State, reach);
    for (Attempts attempts; attempts.wantsAnother();) {
        Program program(desktop);
        MUST(scenario::startWithUnit(program, server.proxy(), fault));
        MUST(reach(program));
        program.sendSignal(signal);
        MUST(program.waitForPromptExit(0));
        MUST(attempts.judge(program, seeOrderlyEnd(program)));
    }
}

/// The look-up never comes back: the program ends at its limit, and gives the unit back all the same.
void tst_exitsignals::signalWhileTheHostIsLookedUp()
{
    for (Attempts attempts; attempts.wantsAnother();) {
        Program program(desktop);
        MUST(scenario::lookHostUp(program));
        program.sendSignal(SIGTERM);
        MUST(program.waitForPromptExit(0));
        MUST(attempts.judge(program, scenario::seeGivenBack(program)));
    }
}

void tst_exitsignals::signalWhileTheHeaderIsAwaited_data()
{
    addSignals();
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

void tst_exitsignals::ignoredSignalStaysIgnored_data()
{
    addSignals();
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
        MUST(seeOffer(program)); // it goes on
        program.sendSignal(signal == SIGTERM ? SIGINT : SIGTERM);
        MUST(program.waitForPromptExit(0));
        MUST(attempts.judge(program, scenario::seeGivenBack(program)));
    }
}

void tst_exitsignals::secondSignalEndsAtOnce_data()
{
    addSignals();
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
    QTest::addColumn<int>("signal"); // none
    QTest::addColumn<QString>("fault");
    QTest::addColumn<State>("reach");
    addPhases("", 0);
}

void tst_exitsignals::lostDisplay()
{
    QFETCH(QString, fault);
    QFETCH(State, reach);
    for (Attempts attempts; attempts.wantsAnother();) {
        Desktop ownDesktop;
        MUST(ownDesktop.start());
        Program program(ownDesktop);
        MUST(scenario::startWithUnit(program, server.proxy(), fault));
        MUST(reach(program));
        program.watchEnd();
        ownDesktop.takeAway();
        MUST(program.waitForPromptExit(1));
        MUST(attempts.judge(program, scenario::seeGivenBack(program)));
    }
}

void tst_exitsignals::lostDisplayWhileTheHostIsLookedUp()
{
    for (Attempts attempts; attempts.wantsAnother();) {
        Desktop ownDesktop;
        MUST(ownDesktop.start());
        Program program(ownDesktop);
        MUST(scenario::lookHostUp(program));
        program.watchEnd();
        ownDesktop.takeAway();
        MUST(program.waitForPromptExit(1));
        MUST(attempts.judge(program, scenario::seeGivenBack(program)));
    }
}

QTEST_GUILESS_MAIN(tst_exitsignals)

#include "tst_exitsignals.moc"
