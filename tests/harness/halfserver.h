#pragma once

#include <QTcpServer>
#include <QTcpSocket>

/// Answers as a proxy for an update server that falls silent in the middle of an image.
class HalfServer : public QTcpServer
{
public:
    /// `updaterVersion` is what its catalogue tells; from 12 on it offers a newer updater.
    explicit HalfServer(int updaterVersion = 11)
    {
        listen(QHostAddress::LocalHost);
        connect(this, &QTcpServer::newConnection, this, [this, updaterVersion] {
            QTcpSocket* const client = nextPendingConnection();
            connect(client, &QTcpSocket::readyRead, client,
                    [client, updaterVersion] { answer(*client, updaterVersion); });
        });
    }
    [[nodiscard]] QString address() const { return QString("http://127.0.0.1:%1").arg(serverPort()); }

private:
    static void answer(QTcpSocket& client, int updaterVersion)
    {
        constexpr int imageSize = 1'000'000;
        const QByteArray request = client.readAll();
        const bool isImage = request.contains("HB4.sb");
        QByteArray body = "Faster.\n";
        if (request.contains("versions.txt"))
            body = "MainVer=" + QByteArray::number(updaterVersion) +
                   "\nMainChangeLog=http://host/updater.txt\nMacMainBin=http://host/updater.zip\nHB4Ver=28\n"
                   "HB4Bin=http://host/HB4.sb\nHB4ChangeLog=http://host/HB4.txt\n";
        if (isImage)
            body = QByteArray(imageSize / 2, 'i');
        const int announced = isImage ? imageSize : body.size();
        client.write("HTTP/1.1 200 OK\r\nContent-Length: " + QByteArray::number(announced) + "\r\n\r\n" +
                     body);
    }
};
