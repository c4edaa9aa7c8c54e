#include "vendor/report.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace {

QJsonObject objectOf(const Report::Row& row)
{
    return {{"model", row.model},  {"stem", row.stem},           {"version", row.version},
            {"image", row.image},  {"changeLog", row.changeLog}, {"digest", row.digest},
            {"isGood", row.isGood}};
}

QJsonObject objectOf(const Report::View& view)
{
    return {{"model", view.viewer.name},
            {"version", view.viewer.version},
            {"sees", view.sight.kind},
            {"text", view.sight.text}};
}

QJsonObject objectOf(const Fetched& fetched)
{
    return {{"key", fetched.wanted.key},
            {"url", fetched.wanted.url},
            {"status", fetched.status},
            {"size", fetched.size},
            {"type", fetched.type},
            {"encoding", fetched.encoding},
            {"digest", QString::fromLatin1(fetched.digest)}};
}

QJsonObject objectOf(const Finding& finding)
{
    return {{"severity", finding.severity == Severity::error ? "error" : "note"},
            {"kind", finding.kind},
            {"line", finding.line},
            {"key", finding.key},
            {"text", finding.text}};
}

template<typename T> QJsonArray arrayOf(const QVector<T>& values)
{
    QJsonArray array;
    for (const T& value : values)
        array.append(objectOf(value));
    return array;
}

/// There are control characters beyond ASCII, too, which a terminal would obey.
QByteArray inAscii(const QByteArray& json)
{
    constexpr ushort lastPrintable = 0x7E;
    QByteArray ascii;
    for (const QChar character : QString::fromUtf8(json)) {
        if (character.unicode() <= lastPrintable)
            ascii += static_cast<char>(character.unicode());
        else
            ascii += "\\u" + QByteArray::number(character.unicode(), 16).rightJustified(4, '0');
    }
    return ascii;
}

} // namespace

QByteArray asJson(const Report& report)
{
    QJsonObject object{{"source", report.source},
                       {"size", report.size},
                       {"rows", arrayOf(report.rows)},
                       {"views", arrayOf(report.views)},
                       {"fetched", arrayOf(report.fetched)},
                       {"findings", arrayOf(shortened(report.findings))},
                       {"errors", countOf(report.findings, Severity::error)},
                       {"notes", countOf(report.findings, Severity::note)}};
    if (report.genuineness.isRequired)
        object["isGenuine"] = report.genuineness.isGood();
    return inAscii(QJsonDocument(object).toJson());
}
