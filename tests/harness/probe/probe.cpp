// Within the program under test (preloaded; on Windows, a part of the virtual HID library): tells, on
// request, what a user sees of it, and changes nothing.

#include "tests/harness/probe/connections.h"
#include "tests/harness/probe/snapshot.h"

#include <QCoreApplication>
#include <QFile>
#include <QJsonDocument>

#ifdef Q_OS_WIN
#include <QNetworkProxy>
#include <QTcpServer>
#include <QTcpSocket>
#else
#include <QLocalServer>
#include <QLocalSocket>
#endif

namespace {

constexpr const char* nameVariable = "TALVEX_PROBE";

#ifdef Q_OS_WIN
using Server = QTcpServer; // a named pipe of Wine's cannot be reached from outside
using Socket = QTcpSocket;
#else
using Server = QLocalServer;
using Socket = QLocalSocket;
#endif

Server* server = nullptr; ///< GUI thread; lives from the application object's start to its end

/// "snapshot" or "connections"; the answer to anything else is an empty object.
QJsonDocument answerTo(const QByteArray& request)
{
    if (request == "snapshot")
        return QJsonDocument(snapshot::take());
    if (request == "connections")
        return QJsonDocument(connections::made());
    return QJsonDocument(QJsonObject());
}

/// One request a line, one answer a line. A socket notifier serves it, so nested event loops answer too.
void answer(Socket* socket)
{
    while (socket->canReadLine()) {
        socket->write(answerTo(socket->readLine().trimmed()).toJson(QJsonDocument::Compact) + '\n');
        socket->flush();
    }
}

/// Tells, by an empty file, that the event loop was left.
void noteQuit()
{
    QFile file(qEnvironmentVariable(nameVariable) + "-quit");
    if (!file.open(QIODevice::WriteOnly))
        qWarning("probe: cannot write %s", qPrintable(file.fileName()));
}

#ifdef Q_OS_WIN
/// On a port of loopback, whose number is written to the file of this name.
bool listen(const QString& name)
{
    server->setProxy(QNetworkProxy::NoProxy);
    QFile file(name);
    return server->listen(QHostAddress::LocalHost) && file.open(QIODevice::WriteOnly) &&
           file.write(QByteArray::number(server->serverPort()) + '\n') > 0;
}
#else
bool listen(const QString& name)
{
    return server->listen(name);
}
#endif

void stop()
{
    delete server;
    server = nullptr;
}

void start()
{
    const QString name = qEnvironmentVariable(nameVariable);
    if (name.isEmpty())
        return;
    server = new Server;
    qAddPostRoutine(stop);
    QObject::connect(qApp, &QCoreApplication::aboutToQuit, server, noteQuit);
    QObject::connect(server, &Server::newConnection, server, [] {
        Socket* const socket = server->nextPendingConnection();
        QObject::connect(socket, &Socket::readyRead, socket, [socket] { answer(socket); });
        QObject::connect(socket, &Socket::disconnected, socket, &QObject::deleteLater);
    });
    if (!listen(name))
        qWarning("probe: cannot listen at %s", qPrintable(name));
}

} // namespace

Q_COREAPP_STARTUP_FUNCTION(start)
