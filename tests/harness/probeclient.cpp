#include "tests/harness/probeclient.h"

#include "tests/support/limits.h"

#include <QFile>
#include <QFileInfo>
#include <QHostAddress>
#include <QJsonDocument>
#include <QNetworkProxy>

bool ProbeClient::open(const QString& path)
{
    if (QFileInfo(path).isFile()) // a socket is none
        return openPort(path);
    if (local.state() == QLocalSocket::ConnectedState)
        return true;
    local.connectToServer(path);
    return local.waitForConnected(limits::hangMs()); // refused at once where nobody listens
}

bool ProbeClient::openPort(const QString& file)
{
    QFile told(file);
    if (!told.open(QIODevice::ReadOnly))
        return false;
    const QByteArray port = told.readAll();
    if (!port.endsWith('\n')) // it is being written
        return false;
    if (tcp.state() != QAbstractSocket::ConnectedState) {
        tcp.setProxy(QNetworkProxy::NoProxy);
        tcp.connectToHost(QHostAddress(QHostAddress::LocalHost), port.trimmed().toUShort());
    }
    socket = &tcp;
    return tcp.waitForConnected(limits::hangMs());
}

QJsonDocument ProbeClient::ask(const QByteArray& request)
{
    socket->write(request + '\n');
    QByteArray answer;
    while (!answer.endsWith('\n')) {
        if (socket->bytesAvailable() == 0 && !socket->waitForReadyRead(limits::hangMs()))
            return {};
        answer += socket->readLine();
    }
    return QJsonDocument::fromJson(answer);
}
