// Preloaded into the program under test: tells, on request, what a user sees of it, and changes nothing.

#include "tests/harness/probe/connections.h"
#include "tests/harness/probe/snapshot.h"

#include <QCoreApplication>
#include <QFile>
#include <QJsonDocument>
#include <QLocalServer>
#include <QLocalSocket>

namespace {

constexpr const char* nameVariable = "TALVEX_PROBE";

QLocalServer* server = nullptr; ///< GUI thread; lives from the application object's start to its end

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
void answer(QLocalSocket* socket)
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
    server = new QLocalServer;
    qAddPostRoutine(stop);
    QObject::connect(qApp, &QCoreApplication::aboutToQuit, server, noteQuit);
    QObject::connect(server, &QLocalServer::newConnection, server, [] {
        QLocalSocket* const socket = server->nextPendingConnection();
        QObject::connect(socket, &QLocalSocket::readyRead, socket, [socket] { answer(socket); });
        QObject::connect(socket, &QLocalSocket::disconnected, socket, &QObject::deleteLater);
    });
    if (!server->listen(name))
        qWarning("probe: cannot listen at %s", qPrintable(name));
}

} // namespace

Q_COREAPP_STARTUP_FUNCTION(start)
