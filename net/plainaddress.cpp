#include "net/plainaddress.h"

#include <QStringList>

QString PlainAddress::url() const
{
    return QStringLiteral("http://") + host + path; // intentional: whatever the scheme was
}

std::optional<PlainAddress> takeApart(const QString& address)
{
    const QString slashes = QStringLiteral("//");
    const QStringList pieces = address.split(slashes);
    if (pieces.size() != 2)
        return std::nullopt;
    const QString& scheme = pieces[0];
    const QString host = pieces[1].section('/', 0, 0);
    const auto prefix = scheme.size() + slashes.size() + host.size();
    if (address.size() <= prefix)
        return std::nullopt;
    return PlainAddress{host, address.mid(prefix)};
}
