#include "net/exchange.h"

#include <QUrl>

namespace exchange {

namespace {

constexpr int okStatus = 200;

/// True for any content encoding but "identity", which is none.
bool isEncoded(const QNetworkReply& answer)
{
    const char* const header = "Content-Encoding";
    return answer.hasRawHeader(header) && answer.rawHeader(header).trimmed().toLower() != "identity";
}

} // namespace

QNetworkRequest requestFor(const QString& address)
{
    QNetworkRequest request(QUrl(address, QUrl::TolerantMode));
    request.setRawHeader("User-Agent", "MyOwnBrowser 1.0"); // intentional: not the program's name
    return request;
}

bool hasGoodStatus(const QNetworkReply& reply)
{
    return reply.attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt() == okStatus;
}

bool isAnswer(const QNetworkReply& reply)
{
    return reply.error() == QNetworkReply::NoError && hasGoodStatus(reply);
}

bool isNoImage(const QNetworkReply& answer)
{
    const QString type = answer.header(QNetworkRequest::ContentTypeHeader).toString();
    return isEncoded(answer) || type.startsWith("text/html", Qt::CaseInsensitive);
}

} // namespace exchange
