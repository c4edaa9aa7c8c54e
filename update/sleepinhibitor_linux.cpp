#include "update/sleepinhibitor.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusReply>
#include <QDBusUnixFileDescriptor>
#include <QMutex>
#include <QMutexLocker>
#include <QThreadPool>

namespace sleepinhibitor {

namespace {

constexpr int answerMs = 5000;

/// Shared by the GUI thread and the thread that waits for the bus; guarded by its lock.
struct State
{
    QMutex lock;
    int wanted = 0; ///< the number of the hold in force; 0: none
    int holds = 0;
    QDBusUnixFileDescriptor inhibitor; ///< logind's lock lasts until it is closed
};

/// Never destroyed: a thread may still wait for the bus when the program ends.
State& state()
{
    static auto* const only = new State;
    return *only;
}

/// Waits for the bus and for logind, on a pool thread: a slow or silent bus must not block the window.
void ask(int number)
{
    const QString name = "sleepinhibitor" + QString::number(number);
    const QDBusConnection bus = QDBusConnection::connectToBus(QDBusConnection::SystemBus, name);
    QDBusMessage call = QDBusMessage::createMethodCall("org.freedesktop.login1", "/org/freedesktop/login1",
                                                       "org.freedesktop.login1.Manager", "Inhibit");
    call << "sleep:idle"
         << "Talvex updater"
         << "A unit's firmware is being updated."
         << "block";
    const QDBusReply<QDBusUnixFileDescriptor> reply = bus.call(call, QDBus::Block, answerMs);
    QDBusConnection::disconnectFromBus(name); // the lock does not need it
    if (!reply.isValid()) {
        qWarning("The computer may go to sleep: %s", qPrintable(reply.error().message()));
        return;
    }
    const QMutexLocker locker(&state().lock);
    if (state().wanted == number)
        state().inhibitor = reply.value();
}

} // namespace

void prepare()
{
    (void)QThreadPool::globalInstance();
    (void)QDBusConnection("none"); // asks nobody; the thread of all connections is there from now on
}

void hold()
{
    const QMutexLocker locker(&state().lock);
    if (state().wanted != 0)
        return;
    const int number = ++state().holds;
    state().wanted = number;
    QThreadPool::globalInstance()->start([number] { ask(number); });
}

void release()
{
    const QMutexLocker locker(&state().lock);
    state().wanted = 0;
    state().inhibitor = QDBusUnixFileDescriptor();
}

} // namespace sleepinhibitor
