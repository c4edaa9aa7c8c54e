#include "tests/support/mocklogind.h"

#include "tests/support/limits.h"

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

namespace {

constexpr auto watcher = "mocklogind";

} // namespace

MockLogind::MockLogind()
{
    const QString address = "unix:path=" + busPath();
    bus.start("dbus-daemon",
              {"--session", "--nofork", "--nopidfile", "--print-address", "--address=" + address});
    if (!bus.waitForStarted(limits::hangMs()) || !bus.waitForReadyRead(limits::hangMs()))
        return;
    logind.start("/usr/bin/python3", {"-m", "dbusmock", "--system", "--template", "logind"});
    if (!logind.waitForStarted(limits::hangMs()))
        return;
    const QDBusConnection connection = QDBusConnection::connectToBus(QDBusConnection::SystemBus, watcher);
    ready = QTest::qWaitFor(
        [&] { return connection.interface()->isServiceRegistered("org.freedesktop.login1").value(); },
        limits::hangMs());
}

MockLogind::~MockLogind()
{
    QDBusConnection::disconnectFromBus(watcher);
    for (QProcess* process : {&logind, &bus}) {
        process->kill();
        process->waitForFinished(limits::hangMs());
    }
    QFile::remove(busPath());
}

QString MockLogind::busPath()
{
    static const QTemporaryDir directory;
    static const QString path = directory.filePath("bus");
    qputenv("DBUS_SYSTEM_BUS_ADDRESS", "unix:path=" + path.toLocal8Bit());
    return path;
}

QStringList MockLogind::inhibitors() const
{
    const QDBusMessage call =
        QDBusMessage::createMethodCall("org.freedesktop.login1", "/org/freedesktop/login1",
                                       "org.freedesktop.login1.Manager", "ListInhibitors");
    const QDBusMessage reply = QDBusConnection(watcher).call(call);
    if (reply.type() != QDBusMessage::ReplyMessage)
        return {reply.errorMessage()};
    QStringList lines;
    const auto all = reply.arguments().value(0).value<QDBusArgument>();
    all.beginArray();
    while (!all.atEnd()) {
        QString what;
        QString who;
        QString why;
        QString mode;
        all.beginStructure();
        all >> what >> who >> why >> mode;
        all.endStructure();
        lines += QStringList{what, who, why, mode}.join('|');
    }
    all.endArray();
    return lines;
}
