#include "net/catalogue.h"

#include "base/updaterversion.h"

#include <QCryptographicHash>
#include <QRegularExpression>

#include <algorithm>
#include <array>

namespace catalogue {

namespace {

/// Calls `use` with each Line. A list of all lines could take fifty times the catalogue's memory.
template<typename Use> void forEachLine(const QByteArray& bytes, const Use& use)
{
    const QString text = QString::fromUtf8(bytes.constData()); // intentional: ends at the first NUL byte
    int number = 0;
    for (int start = 0, end = 0; end >= 0; start = end + 1) {
        ++number;
        end = text.indexOf('\n', start);
        const QStringRef line = text.midRef(start, end < 0 ? -1 : end - start);
        const int equals = line.indexOf('=');
        if (equals >= 0)
            use(Line{number, line.left(equals).toString(), line.mid(equals + 1).toString()});
    }
}

} // namespace

QByteArray withoutCarriageReturns(QByteArray bytes)
{
    bytes.replace('\r', QByteArray());
    return bytes;
}

QVector<Line> readLines(const QByteArray& bytes)
{
    QVector<Line> read;
    forEachLine(bytes, [&read](const Line& line) { read.append(line); });
    return read;
}

Entries parse(const QByteArray& bytes)
{
    Entries entries;
    forEachLine(bytes, [&entries](const Line& line) { entries.insert(line.key, line.value); });
    return entries;
}

QString keyStem(UnitType type)
{
    const UnitModel* model = findUnitModel(type);
    return model != nullptr ? model->catalogueStem : "HB2";
}

Offer lookUp(const Entries& entries, const QString& stem)
{
    Offer offer;
    offer.newVersion = entries.value(stem + suffix::version);
    offer.binUrl = entries.value(stem + suffix::image);
    offer.changeLogUrl = entries.value(stem + suffix::changeLog);
    offer.mainVersion = entries.value(key::mainVersion);
    offer.mainChangeLogUrl = entries.value(key::mainChangeLog);
    offer.mainBinUrl = entries.value(key::mainImage);
    offer.imageDigest = entries.value(stem + suffix::digest);
    return offer;
}

Decision decide(const Offer& offer, const QString& curVersion, bool digestRequired)
{
    // Intentional: the updater's change log is not required. Without an address, requesting it fails.
    const std::array required{&offer.newVersion, &offer.binUrl, &offer.changeLogUrl, &offer.mainBinUrl,
                              &offer.mainVersion};
    if (std::any_of(required.begin(), required.end(), [](const QString* value) { return value->isEmpty(); }))
        return Decision::incomplete;
    if (digestRequired && !isDigest(offer.imageDigest))
        return Decision::incomplete;
    if (offer.mainVersion.toInt() >= UPDATER_VERSION_THRESHOLD)
        return Decision::newerUpdater;
    return leadingNumber(offer.newVersion) > leadingNumber(curVersion) ? Decision::newerFirmware
                                                                       : Decision::upToDate;
}

bool isDigest(const QString& text)
{
    static const QRegularExpression digest(R"(\A[0-9A-Fa-f]{64}\z)");
    return digest.match(text).hasMatch();
}

QString digestOf(const QByteArray& image)
{
    return QString::fromLatin1(QCryptographicHash::hash(image, QCryptographicHash::Sha256).toHex());
}

double leadingNumber(const QString& text)
{
    static const QRegularExpression number(R"(^\s*([+-]?(?:[0-9]+\.?[0-9]*|\.[0-9]+)(?:[eE][+-]?[0-9]+)?))");
    return number.match(text).captured(1).toDouble(); // an empty text is 0.0
}

} // namespace catalogue
