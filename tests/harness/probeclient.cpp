#include "tests/harness/probeclient.h"

#include "tests/support/limits.h"

#include <QJsonDocument>

bool ProbeClient::open(const QString& path)
{
    if (socket.state() == QLocalSocket::ConnectedState)
        return true;
    socket.connectToServer(path);
    return socket.waitForConnected(limits::hangMs()); // refused at once where nobody listens
}

QJsonDocument ProbeClient::ask(const QByteArray& request)
{
    socket.write(request + '\n');
    QByteArray answer;
    while (!answer.endsWith('\n')) {
        if (socket.bytesAvailable() == 0 && !socket.waitForReadyRead(limits::hangMs()))
            return {};
        answer += socket.readLine();
    }
    return QJsonDocument::fromJson(answer);
}
