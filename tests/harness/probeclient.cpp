#include "probeclient.h"

#include <QElapsedTimer>
#include <QJsonDocument>

bool ProbeClient::open(const QString& path)
{
    if (socket.state() == QLocalSocket::ConnectedState)
        return true;
    socket.connectToServer(path);
    return socket.waitForConnected(100);
}

QJsonDocument ProbeClient::ask(const QByteArray& request, int limitMs)
{
    QElapsedTimer passed;
    passed.start();
    socket.write(request + '\n');
    QByteArray answer;
    while (!answer.endsWith('\n') && !passed.hasExpired(limitMs)) {
        if (socket.bytesAvailable() == 0 && !socket.waitForReadyRead(limitMs))
            return {};
        answer += socket.readLine();
    }
    return QJsonDocument::fromJson(answer);
}
