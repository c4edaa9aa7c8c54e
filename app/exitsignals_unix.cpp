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

/// Reading end and writing end of a pipe. What a signal writes stays in it, so that both who wait see it.
std::array<int, 2> pipeEnds{-1, -1};

/// A signal's handler: only calls that are safe in one.
void note(int /*signal*/)
{
    const int savedError = errno;
    const char byte = 0;
    (void)!write(pipeEnds[1], &byte, 1);
    errno = savedError;
}

void handle(int signal)
{
    struct sigaction action = {};
    if (sigaction(signal, nullptr, &action) != 0 || action.sa_handler == SIG_IGN)
        return;
    action = {};
    action.sa_handler = note;
    action.sa_flags = SA_RESTART | static_cast<int>(SA_RESETHAND); // the next one ends the process
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
        return; // the signals end the process as they always do
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
        notifier->setEnabled(false); // what was written stays
        QCoreApplication::quit();
    });
}

} // namespace exitsignals
