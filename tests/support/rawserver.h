#pragma once

#include <QByteArray>
#include <QByteArrayList>
#include <QMap>
#include <QObject>
#include <QSslConfiguration>
#include <QString>
#include <QStringList>

#include <memory>
#include <optional>

class QTcpServer;
class QTcpSocket;

/// An HTTP server on loopback that sends exactly the bytes it is told to, faults included; it takes the
/// requests of a client that uses it as its HTTP proxy just as well. Lives on the thread of its tests.
class RawServer : public QObject
{
public:
    enum class End {
        keepOpen, ///< the connection takes the next request
        close,
        reset,
    };

    /// What one request is answered with.
    struct Answer
    {
        QByteArrayList pieces; ///< each is one write, the next follows a turn of the event loop later
        End end = End::close;
        bool stepwise = false; ///< every piece behind the first waits for a call of goOn()
        bool endless = false;  ///< the last piece again and again, until the client goes or 1 GiB is sent
    };

    /// With a certificate the server speaks TLS.
    explicit RawServer(const std::optional<QSslConfiguration>& tls = std::nullopt);
    ~RawServer() override;

    [[nodiscard]] quint16 port() const { return ownPort; }
    /// From now on connections to the port are refused.
    void stopListening();

    /// "http://127.0.0.1:PORT" or "https://...", with the path behind it.
    [[nodiscard]] QString address(const QString& path) const;

    /// Every request for this path from now on; other paths are answered with status 404.
    void setAnswer(const QString& path, const Answer& answer);
    void goOn();

    /// Forgets answers and requests, and closes every connection.
    void clear();

    /// Request heads byte for byte, in the order of their arrival.
    [[nodiscard]] const QByteArrayList& requests() const { return heads; }
    /// The same requests' paths, without scheme and host.
    [[nodiscard]] QStringList paths() const;
    [[nodiscard]] qint64 bytesSent() const { return sent; }

private:
    class Conversation;
    class Listener;

    void greet(QTcpSocket* socket);
    [[nodiscard]] Answer take(const QByteArray& head);

    std::unique_ptr<QTcpServer> listener;
    quint16 ownPort = 0;
    bool encrypted = false;
    QMap<QString, Answer> answers;
    QByteArrayList heads;
    QList<Conversation*> conversations; ///< each owned by its socket
    qint64 sent = 0;
};

/// Status line and headers, each without its line end, and the empty line behind them.
[[nodiscard]] QByteArray httpHead(const QByteArrayList& lines);

/// A whole answer: this status ("200 OK"), the body's true length, further header lines, the body.
[[nodiscard]] QByteArray httpAnswer(const QByteArray& status, const QByteArray& body,
                                    const QByteArrayList& furtherHeaders = {});

/// Status 200 with this body, in one piece; the connection stays open.
[[nodiscard]] RawServer::Answer ok(const QByteArray& body, const QByteArrayList& furtherHeaders = {});

/// Status 200 and a body whose length is said to be `length`, whatever it is.
[[nodiscard]] QByteArray announced(qsizetype length, const QByteArray& body);

/// Status 200 and a body of which neither length nor end is told.
[[nodiscard]] QByteArray unannounced(const QByteArray& body);

/// Status 200 and the body in chunks of so many bytes.
[[nodiscard]] QByteArray inChunks(const QByteArray& body, int chunkSize);

/// The request is taken, nothing comes.
[[nodiscard]] RawServer::Answer silence();

/// This piece for ever.
[[nodiscard]] RawServer::Answer endless(const QByteArray& piece);

/// Every byte by itself.
[[nodiscard]] QByteArrayList drops(const QByteArray& bytes);
