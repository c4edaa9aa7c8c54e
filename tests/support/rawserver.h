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

/// An HTTP server on loopback that sends exactly the bytes it is told to send, including faulty ones. It
/// also accepts requests from clients that use it as an HTTP proxy. Lives on the test's thread.
class RawServer : public QObject
{
public:
    enum class End {
        keepOpen, ///< the connection accepts the next request
        close,
        reset,
    };

    /// The answer to one request.
    struct Answer
    {
        QByteArrayList pieces; ///< each is one write; the next follows in a later turn of the event loop
        End end = End::close;
        bool stepwise = false; ///< every piece after the first waits for a call to goOn()
        bool endless = false;  ///< repeats the last piece until the client disconnects or 1 GiB is sent
    };

    /// With a certificate the server speaks TLS.
    explicit RawServer(const std::optional<QSslConfiguration>& tls = std::nullopt);
    ~RawServer() override;

    [[nodiscard]] quint16 port() const { return ownPort; }
    /// Makes the port refuse connections from now on.
    void stopListening();

    /// "http://127.0.0.1:PORT" or "https://...", followed by the path.
    [[nodiscard]] QString address(const QString& path) const;

    /// Sets the answer to every request for this path from now on; other paths are answered with status 404.
    void setAnswer(const QString& path, const Answer& answer);
    void goOn();

    /// Forgets answers and requests, and closes every connection.
    void clear();

    /// Request heads, byte for byte, in order of arrival.
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

/// Status line and headers, with line ends added, and the empty line after them. `lines` come without line
/// ends.
[[nodiscard]] QByteArray httpHead(const QByteArrayList& lines);

/// A complete answer: this status ("200 OK"), the body's true length, further header lines and the body.
[[nodiscard]] QByteArray httpAnswer(const QByteArray& status, const QByteArray& body,
                                    const QByteArrayList& furtherHeaders = {});

/// Status 200 with this body, in one piece; the connection stays open.
[[nodiscard]] RawServer::Answer ok(const QByteArray& body, const QByteArrayList& furtherHeaders = {});

/// Status 200 and a body declared as `length` bytes long, whatever its true length.
[[nodiscard]] QByteArray announced(qsizetype length, const QByteArray& body);

/// Status 200 and a body with neither a length nor an end marker.
[[nodiscard]] QByteArray unannounced(const QByteArray& body);

/// Status 200 and the body in chunks of this many bytes.
[[nodiscard]] QByteArray inChunks(const QByteArray& body, int chunkSize);

/// The first bytes of an answer, and the rest once goOn() is called; the connection stays open.
[[nodiscard]] RawServer::Answer inTwoSteps(const QByteArray& answer, int first);

/// Accepts the request and sends nothing.
[[nodiscard]] RawServer::Answer silence();

/// Sends this piece over and over.
[[nodiscard]] RawServer::Answer endless(const QByteArray& piece);

/// Each byte as a separate piece.
[[nodiscard]] QByteArrayList drops(const QByteArray& bytes);
