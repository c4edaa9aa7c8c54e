#include "vendor/fetcher.h"

#include "base/sizelimit.h"
#include "net/exchange.h"

#include <QCryptographicHash>
#include <QEventLoop>
#include <QNetworkReply>
#include <QSslError>
#include <QTimer>

#include <utility>

namespace {

constexpr int mostAtOnce = 4;

} // namespace

/// One request, started on construction.
class Fetcher::Download : public QObject
{
public:
    Download(Fetcher& asking, Fetched& result)
        : fetcher(asking), fetched(result), reply(asking.manager.get(exchange::requestFor(result.wanted.url)))
    {
        reply->setParent(this);
        silence.setInterval(fetcher.silenceLimit);
        connect(&silence, &QTimer::timeout, this,
                [this] { giveUp(QString("nothing received for %1 s").arg(fetcher.silenceLimit / 1000)); });
        connect(reply, &QIODevice::readyRead, this, [this] { take(); });
        connect(reply, &QNetworkReply::downloadProgress, this, [this](qint64 /*done*/, qint64 total) {
            silence.start();
            fetched.isReported = fetched.isReported || total >= exchange::reportedTotal;
        });
        connect(reply, &QNetworkReply::sslErrors, this, [this](const QList<QSslError>& errors) {
            if (!errors.isEmpty())
                fetched.certificateFault = errors.first().errorString();
        });
        connect(reply, &QNetworkReply::finished, this, [this] { end(); });
        silence.start();
    }

    ~Download() override { reply->disconnect(this); }

    [[nodiscard]] bool isRunning() const { return reply->isRunning(); }

    /// Aborts the request, which ends the download.
    void giveUp(const QString& why)
    {
        if (fetched.failure.isEmpty())
            fetched.failure = why;
        reply->abort();
    }

private:
    void take()
    {
        const QByteArray piece = reply->readAll();
        fetched.size += piece.size();
        fetcher.bytes += piece.size();
        digest.addData(piece);
        if (fetcher.keptBody != nullptr)
            *fetcher.keptBody += piece;
        fetcher.tell();
        if (fetched.size > sizeLimit)
            giveUp(QString("more than %1 bytes").arg(sizeLimit));
    }

    void end()
    {
        silence.stop();
        fetched.status = reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
        fetched.type = QString::fromLatin1(reply->rawHeader("Content-Type"));
        fetched.encoding = QString::fromLatin1(reply->rawHeader("Content-Encoding"));
        fetched.digest = digest.result().toHex();
        fetched.isAnswer = exchange::isAnswer(*reply);
        fetched.isNoImage = exchange::isNoImage(*reply);
        if (fetched.failure.isEmpty() && reply->error() != QNetworkReply::NoError)
            fetched.failure = reply->errorString();
        fetcher.finish();
    }

    Fetcher& fetcher;
    Fetched& fetched;
    QNetworkReply* reply; ///< owned by this
    QTimer silence;
    QCryptographicHash digest{QCryptographicHash::Sha256};
};

Fetcher::Fetcher(int silenceLimitMs, Progress told) : silenceLimit(silenceLimitMs), progress(std::move(told))
{
    manager.setRedirectPolicy(QNetworkRequest::NoLessSafeRedirectPolicy);
    connect(&manager, &QNetworkAccessManager::sslErrors, &manager,
            [](QNetworkReply* reply) { reply->ignoreSslErrors(); });
}

Fetcher::~Fetcher() = default;

QVector<Fetched> Fetcher::fetch(const QVector<Wanted>& wanted)
{
    for (const Wanted& one : wanted) {
        Fetched result;
        result.wanted = one;
        results.append(result);
    }
    tell();
    for (int started = 0; started < mostAtOnce; ++started)
        startNext();
    if (ended < results.size())
        loop.exec();
    return results;
}

Fetched Fetcher::fetchBody(const Wanted& wanted, QByteArray& body)
{
    keptBody = &body;
    return fetch({wanted}).first();
}

void Fetcher::stop()
{
    stopped = true;
    for (const auto& download : downloads)
        if (download->isRunning())
            download->giveUp("interrupted");
    loop.quit();
}

void Fetcher::startNext()
{
    const auto next = static_cast<int>(downloads.size());
    if (!stopped && next < results.size())
        downloads.push_back(std::make_unique<Download>(*this, results[next]));
}

/// One download has ended.
void Fetcher::finish()
{
    ++ended;
    tell();
    startNext();
    if (ended == results.size())
        loop.quit();
}

void Fetcher::tell() const
{
    if (progress)
        progress(ended, results.size(), bytes);
}
