#include "app/exitsignals.h"

#include <QCoreApplication>
#include <QSocketNotifier>

#include <array>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <poll.h>
#include <thread>
#include <unistd.h>

namespace exitsignals {

namespace {

/// The read end and the write end of a pipe. What a signal writes stays in it, so that both waiters see it.
std::array<int, 2> pipeEnds{-1, -1};

/// By signal number: 1 once the signal has arrived.
std::array<volatile std::sig_atomic_t, NSIG> seen{};

/// Closing a terminal sends two SIGHUPs to its program: one from the shell, and one from the kernel once the
/// shell has gone.
bool isKernelsHangup(int signal, const siginfo_t& info)
{
#ifdef SI_KERNEL
    return signal == SIGHUP && info.si_code == SI_KERNEL;
#else
    (void)info; // the sender is unknown here
    return signal == SIGHUP;
#endif
}

/// The signal handler: makes only calls that are safe in one.
void note(int signal, siginfo_t* info, void* /*context*/)
{
    const int savedError = errno;
    const char byte = 0;
    (void)!write(pipeEnds[1], &byte, 1);
    if (!isKernelsHangup(signal, *info)) {
        const auto index = static_cast<std::size_t>(signal);
        if (seen[index] != 0) {
            std::signal(signal, SIG_DFL);
            (void)raise(signal); // held back until this returns
        }
        seen[index] = 1;
    }
    errno = savedError;
}

void handle(int signal)
{
    struct sigaction action = {};
    if (sigaction(signal, nullptr, &action) != 0 || action.sa_handler == SIG_IGN)
        return;
    action = {};
    action.sa_sigaction = note;
    action.sa_flags = SA_RESTART | SA_SIGINFO;
    sigaction(signal, &action, nullptr);
}

void awaitSignal()
{
    pollfd wanted{pipeEnds[0], POLLIN, 0};
    while (poll(&wanted, 1, -1) < 0 && errno == EINTR) {
    }
}

} // namespace

void listen(void (*told)())
{
    if (pipe(pipeEnds.data()) != 0)
        return; // the signals keep their default effect
    for (const int end : pipeEnds)
        fcntl(end, F_SETFD, FD_CLOEXEC);
    for (const int signal : {SIGTERM, SIGINT, SIGHUP})
        handle(signal);
    std::thread([told] {
        awaitSignal();
        told();
    }).detach();
}

void quitOnSignal(QCoreApplication& application)
{
    if (pipeEnds[0] < 0)
        return;
    auto* const notifier = new QSocketNotifier(pipeEnds[0], QSocketNotifier::Read, &application);
    QObject::connect(notifier, &QSocketNotifier::activated, notifier, [notifier] {
        notifier->setEnabled(false); // the byte stays in the pipe
        QCoreApplication::quit();
    });
}

} // namespace exitsignals
