#pragma once

#include "tests/support/cataloguetext.h"

#include <QTcpServer>
#include <QTcpSocket>
#include <QTimer>

/// A proxy for an update server that all but stops sending in the middle of an image.
class HalfServer : public QTcpServer
{
public:
    /// `updaterVersion` is the version in its catalogue.
    explicit HalfServer(const QString& updaterVersion = updater::own)
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
    static void answer(QTcpSocket& client, const QString& updaterVersion)
    {
        const QByteArray request = client.readAll();
        QByteArray body = "Faster.\n";
        if (request.contains("HB4.sb")) {
            sendHalf(client);
            return;
        }
        if (request.contains(cataloguePath)) {
            CatalogueEntries entries =
                catalogueEntries("HB4", "28", "http://host/HB4.sb", "http://host/HB4.txt");
            entries["MainVer"] = updaterVersion;
            body = catalogueText(entries);
        }
        client.write(header(body.size()) + body);
    }

    static QByteArray header(int size)
    {
        return "HTTP/1.1 200 OK\r\nContent-Length: " + QByteArray::number(size) + "\r\n\r\n";
    }

    /// In pieces, because Qt reports no progress until an answer has been arriving for a while; and then byte
    /// by byte, because it may have seen all of these at once.
    static void sendHalf(QTcpSocket& client)
    {
        constexpr int pieces = 20;
        constexpr int pieceSize = 50'000;
        constexpr int pauseMs = 50;
        client.write(header(pieces * pieceSize));
        auto* const timer = new QTimer(&client);
        connect(timer, &QTimer::timeout, &client, [&client, sent = 0]() mutable {
            client.write(QByteArray(++sent <= pieces / 2 ? pieceSize : 1, 'i'));
        });
        timer->start(pauseMs);
    }
};
