// Which signals end a program at once and which give it time. Each row is a process of its own, which sends
// itself the signals: every one has been handled when the next is sent.

#include "app/exitsignals.h"
#include "tests/support/rows.h"

#include <QCoreApplication>
#include <QProcess>
#include <QtTest>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <semaphore>
#include <sys/syscall.h>
#include <unistd.h>

namespace {

using Signals = QList<int>;

constexpr auto outlive = "--outlive";
constexpr auto quitBefore = "--quit-before";
constexpr auto quitWhileRunning = "--quit-while-running";
const QByteArray goesOn = "goes on";

constexpr int nothing = 0; ///< no signal ends the process

/// The signal as the kernel itself sends it, for a terminal: when Ctrl+C is pressed or the terminal goes.
constexpr int ofKernel(int signal)
{
    return -signal;
}

/// Sends it to this thread.
void send(int signal)
{
    siginfo_t info = {};
    info.si_signo = std::abs(signal);
    info.si_code = signal < 0 ? SI_KERNEL : SI_TKILL;
    syscall(SYS_rt_tgsigqueueinfo, getpid(), gettid(), info.si_signo, &info);
}

std::binary_semaphore told{0};

/// Returns once the listener has been told of the signals.
void outliveSignals(const QStringList& signalsSent)
{
    exitsignals::listen([] { told.release(); });
    for (const QString& signal : signalsSent)
        send(signal.toInt());
    told.acquire();
}

/// Returns once the application was quit.
void quitBySignal(QCoreApplication& application, bool isRunning)
{
    exitsignals::listen([] {});
    if (!isRunning)
        send(SIGTERM);
    exitsignals::quitOnSignal(application);
    if (isRunning)
        QTimer::singleShot(0, &application, [] { send(SIGTERM); });
    QCoreApplication::exec();
}

/// What a process of this program said in this role.
QByteArray playRole(QProcess& process, const QStringList& role)
{
    process.start(QCoreApplication::applicationFilePath(), role);
    const bool hasEnded = process.waitForFinished(limits::hangMs());
    return hasEnded ? process.readAllStandardOutput() : QByteArray("hangs");
}

} // namespace

Q_DECLARE_METATYPE(Signals)

class TestSignalHandlers : public QObject
{
    Q_OBJECT

private slots:
    void severalSignals_data();
    void severalSignals();
    void applicationIsQuit_data();
    void applicationIsQuit();
};

void TestSignalHandlers::severalSignals_data()
{
    const Rows<Signals, int> row("sent", "deathBy");
    row("SIGTERM", {SIGTERM}, nothing);
    row("SIGINT", {SIGINT}, nothing);
    row("SIGHUP", {SIGHUP}, nothing);
    row("one of each kind, as a log-out sends them", {SIGTERM, SIGHUP, SIGINT}, nothing);
    row("SIGTERM twice", {SIGTERM, SIGTERM}, SIGTERM);
    row("SIGINT twice", {SIGINT, SIGINT}, SIGINT);
    row("SIGHUP twice", {SIGHUP, SIGHUP}, SIGHUP);
    row("twice, another between", {SIGTERM, SIGHUP, SIGTERM}, SIGTERM);
    row("Ctrl+C twice", {ofKernel(SIGINT), ofKernel(SIGINT)}, SIGINT);
    row("a terminal is closed", {SIGHUP, ofKernel(SIGHUP)}, nothing);
    row("a terminal is closed, the shell last", {ofKernel(SIGHUP), SIGHUP}, nothing);
    row("a terminal without a shell is closed", {ofKernel(SIGHUP)}, nothing);
}

void TestSignalHandlers::severalSignals()
{
    QFETCH(Signals, sent);
    QFETCH(int, deathBy);
    QStringList role{outlive};
    for (const int signal : qAsConst(sent))
        role += QString::number(signal);
    QProcess process;
    QCOMPARE(playRole(process, role), deathBy == nothing ? goesOn : QByteArray());
    QCOMPARE(process.exitStatus(), deathBy == nothing ? QProcess::NormalExit : QProcess::CrashExit);
    QCOMPARE(process.exitCode(), deathBy);
}

void TestSignalHandlers::applicationIsQuit_data()
{
    QTest::addColumn<QString>("role");
    QTest::newRow("by a signal that came before") << quitBefore;
    QTest::newRow("while it runs") << quitWhileRunning;
}

void TestSignalHandlers::applicationIsQuit()
{
    QFETCH(QString, role);
    QProcess process;
    QCOMPARE(playRole(process, {role}), goesOn);
    QCOMPARE(process.exitCode(), 0);
}

int main(int argc, char** argv)
{
    QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    const QString role = arguments.value(1);
    if (role == outlive) {
        outliveSignals(arguments.mid(2));
    } else if (role == quitBefore || role == quitWhileRunning) {
        quitBySignal(application, role == quitWhileRunning);
    } else {
        TestSignalHandlers test;
        return QTest::qExec(&test, argc, argv);
    }
    std::printf("%s", goesOn.constData());
    return 0;
}

#include "tst_signalhandlers.moc"
