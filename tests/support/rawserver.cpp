#include "tests/support/rawserver.h"

#include <QSslSocket>
#include <QTcpServer>
#include <QTimer>
#include <QUrl>

#include <algorithm>
#include <utility>

#ifdef Q_OS_WIN
#include <winsock2.h>
#else
#include <sys/socket.h>
#endif

namespace {

constexpr qint64 endlessLimit = 1024LL * 1024 * 1024;
constexpr qint64 mostUnsent = 1024LL * 1024; ///< bytes an endless answer keeps in the socket's own buffer

/// "/path?query" of a request line, whether or not scheme and host stand before it.
QString pathOf(const QByteArray& head)
{
    const QByteArrayList words = head.left(head.indexOf("\r\n")).split(' ');
    const QUrl target = QUrl::fromEncoded(words.value(1));
    return target.toString(QUrl::RemoveScheme | QUrl::RemoveAuthority);
}

/// The next close sends a reset instead of an orderly end.
void closeHard(QTcpSocket& socket)
{
    const linger atOnce{1, 0};
#ifdef Q_OS_WIN
    setsockopt(static_cast<SOCKET>(socket.socketDescriptor()), SOL_SOCKET, SO_LINGER,
               reinterpret_cast<const char*>(&atOnce), sizeof atOnce);
#else
    setsockopt(static_cast<int>(socket.socketDescriptor()), SOL_SOCKET, SO_LINGER, &atOnce, sizeof atOnce);
#endif
    socket.abort();
}

} // namespace

/// One connection: reads request after request and sends their answers.
class RawServer::Conversation : public QObject
{
public:
    Conversation(RawServer& owner, QTcpSocket* peer) : QObject(peer), server(owner), socket(peer)
    {
        socket->setSocketOption(QAbstractSocket::LowDelayOption, 1);
        connect(socket, &QIODevice::readyRead, this, [this] { read(); });
        connect(socket, &QIODevice::bytesWritten, this, [this] { wrote(); });
        connect(socket, &QAbstractSocket::disconnected, socket, &QObject::deleteLater);
    }

    ~Conversation() override { server.conversations.removeOne(this); }

    void goOn()
    {
        if (answering && waiting)
            sendNext();
    }

    void drop()
    {
        socket->abort();
        delete socket; // and this with it
    }

private:
    void read()
    {
        received += socket->readAll();
        const auto end = received.indexOf("\r\n\r\n");
        if (end < 0 || answering)
            return;
        const QByteArray head = received.left(end + 4);
        received.remove(0, end + 4);
        answer = server.take(head);
        answering = true;
        next = 0;
        sendNext();
    }

    void sendNext()
    {
        waiting = false;
        if (next == answer.pieces.size()) {
            finishing = true;
            wrote();
            return;
        }
        send(answer.pieces[next++]);
        waiting = answer.stepwise && next < answer.pieces.size();
        if (!waiting)
            QTimer::singleShot(0, this, [this] { sendNext(); });
    }

    [[nodiscard]] bool isConnected() const { return socket->state() == QAbstractSocket::ConnectedState; }

    void send(const QByteArray& bytes)
    {
        if (!isConnected())
            return; // the client has gone in the meantime
        socket->write(bytes);
        socket->flush();
        server.sent += bytes.size();
    }

    /// Goes on behind the last piece once enough of it has left.
    void wrote()
    {
        if (!finishing)
            return;
        if (answer.endless && isConnected() && server.sent < endlessLimit) {
            sendForEver();
            return;
        }
        if (socket->bytesToWrite() > 0)
            return;
        finishing = false;
        answering = false;
        if (answer.end == End::reset)
            closeHard(*socket);
        else if (answer.end == End::close)
            socket->disconnectFromHost();
    }

    /// One more piece in each turn of the event loop: a client in the same thread is to get its turns too.
    void sendForEver()
    {
        if (refilling || socket->bytesToWrite() >= mostUnsent)
            return;
        refilling = true;
        QTimer::singleShot(0, this, [this] {
            refilling = false;
            send(answer.pieces.last());
            wrote();
        });
    }

    RawServer& server;
    QTcpSocket* socket;
    QByteArray received;
    Answer answer;
    int next = 0;
    bool answering = false;
    bool waiting = false;
    bool finishing = false;
    bool refilling = false;
};

class RawServer::Listener : public QTcpServer
{
public:
    Listener(RawServer& owner, std::optional<QSslConfiguration> withTls)
        : server(owner), tls(std::move(withTls))
    {
    }

protected:
    void incomingConnection(qintptr descriptor) override
    {
        auto* socket = new QSslSocket(this); // deleted when disconnected, or with this
        socket->setSocketDescriptor(descriptor);
        if (tls) {
            socket->setSslConfiguration(*tls);
            socket->startServerEncryption();
        }
        server.greet(socket);
    }

private:
    RawServer& server;
    std::optional<QSslConfiguration> tls;
};

RawServer::RawServer(const std::optional<QSslConfiguration>& tls)
    : listener(std::make_unique<Listener>(*this, tls)), encrypted(tls.has_value())
{
    if (!listener->listen(QHostAddress::LocalHost))
        qFatal("no port on loopback");
    ownPort = listener->serverPort();
}

RawServer::~RawServer()
{
    clear();
}

void RawServer::stopListening()
{
    listener->close();
}

QString RawServer::address(const QString& path) const
{
    return QStringLiteral("%1://127.0.0.1:%2%3").arg(encrypted ? "https" : "http").arg(port()).arg(path);
}

void RawServer::setAnswer(const QString& path, const Answer& answer)
{
    answers.insert(path, answer);
}

void RawServer::goOn()
{
    for (Conversation* conversation : std::as_const(conversations))
        conversation->goOn();
}

void RawServer::clear()
{
    while (!conversations.isEmpty())
        conversations.first()->drop();
    answers.clear();
    heads.clear();
    sent = 0;
}

QStringList RawServer::paths() const
{
    QStringList all;
    std::transform(heads.begin(), heads.end(), std::back_inserter(all), pathOf);
    return all;
}

void RawServer::greet(QTcpSocket* socket)
{
    conversations.append(new Conversation(*this, socket)); // owned by the socket
}

RawServer::Answer RawServer::take(const QByteArray& head)
{
    heads.append(head);
    return answers.value(pathOf(head), {{httpAnswer("404 Not Found", "no such path")}});
}

QByteArray httpHead(const QByteArrayList& lines)
{
    return lines.join("\r\n") + "\r\n\r\n";
}

QByteArray httpAnswer(const QByteArray& status, const QByteArray& body, const QByteArrayList& furtherHeaders)
{
    QByteArrayList lines{"HTTP/1.1 " + status, "Content-Length: " + QByteArray::number(body.size())};
    return httpHead(lines + furtherHeaders) + body;
}

RawServer::Answer ok(const QByteArray& body, const QByteArrayList& furtherHeaders)
{
    return {{httpAnswer("200 OK", body, furtherHeaders)}, RawServer::End::keepOpen};
}

QByteArray announced(qsizetype length, const QByteArray& body)
{
    return httpHead({"HTTP/1.1 200 OK", "Content-Length: " + QByteArray::number(length)}) + body;
}

QByteArray unannounced(const QByteArray& body)
{
    return httpHead({"HTTP/1.1 200 OK"}) + body;
}

QByteArray inChunks(const QByteArray& body, int chunkSize)
{
    QByteArray bytes = httpHead({"HTTP/1.1 200 OK", "Transfer-Encoding: chunked"});
    for (int start = 0; start < body.size(); start += chunkSize) {
        const QByteArray chunk = body.mid(start, chunkSize);
        bytes += QByteArray::number(chunk.size(), 16) + "\r\n" + chunk + "\r\n";
    }
    return bytes + "0\r\n\r\n";
}

RawServer::Answer inTwoSteps(const QByteArray& answer, int first)
{
    return {{answer.left(first), answer.mid(first)}, RawServer::End::keepOpen, true};
}

RawServer::Answer silence()
{
    return {{}, RawServer::End::keepOpen};
}

RawServer::Answer endless(const QByteArray& piece)
{
    return {{httpHead({"HTTP/1.1 200 OK", "Connection: close"}), piece}, RawServer::End::close, false, true};
}

QByteArrayList drops(const QByteArray& bytes)
{
    QByteArrayList all;
    for (const char one : bytes)
        all.append(QByteArray(1, one));
    return all;
}
