#include "vendor/fetched.h"

#include "net/exchange.h"
#include "net/plainaddress.h"
#include "vendor/models.h"

namespace {

namespace suffix = catalogue::suffix;

/// The catalogue's digest for the image under this key; empty if none.
QString digestFor(const QString& imageKey, const catalogue::Entries& entries)
{
    QString stem = imageKey;
    stem.chop(static_cast<int>(qstrlen(suffix::image)));
    return entries.value(stem + suffix::digest);
}

} // namespace

QVector<Wanted> wantedBy(const catalogue::Entries& entries)
{
    QVector<Wanted> wanted;
    const auto want = [&](const QString& key, bool isImage) {
        if (const auto parts = takeApart(entries.value(key)))
            wanted.append({key, parts->url(), isImage});
    };
    want(catalogue::key::mainChangeLog, false);
    for (const QString& stem : models::stems()) {
        want(stem + suffix::changeLog, false);
        want(stem + suffix::image, true);
    }
    return wanted;
}

Findings checks::ofFetched(const Fetched& fetched, const catalogue::Entries& entries)
{
    Findings found;
    const auto complain = [&](const char* kind, const QString& what) {
        found.append({Severity::error, kind, 0, fetched.wanted.key, fetched.wanted.url + ' ' + what});
    };
    if (fetched.isReported)
        complain("large-answer", QString("announces %1 bytes or more: the updater reports a problem")
                                     .arg(exchange::reportedTotal));
    if (!fetched.certificateFault.isEmpty())
        found.append({Severity::note, "bad-certificate", 0, fetched.wanted.key,
                      fetched.wanted.url + ": certificate not valid: " + fetched.certificateFault});
    if (!fetched.isAnswer) {
        complain("no-answer", fetched.failure.isEmpty()
                                  ? QString("is answered with status %1").arg(fetched.status)
                                  : "is not served: " + fetched.failure);
        return found;
    }
    if (!fetched.wanted.isImage)
        return found;
    if (fetched.isNoImage)
        complain("no-image", QString("is refused as an image: type \"%1\", encoding \"%2\"")
                                 .arg(fetched.type, fetched.encoding));
    if (fetched.size == 0)
        complain("empty-image", "is empty");
    const QString expected = digestFor(fetched.wanted.key, entries);
    if (catalogue::isDigest(expected) && expected.toLower() != QLatin1String(fetched.digest))
        complain("wrong-digest",
                 "has the digest " + QLatin1String(fetched.digest) + ", not the one in the catalogue");
    return found;
}
