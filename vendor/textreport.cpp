#include "base/shownversion.h"
#include "vendor/escaped.h"
#include "vendor/report.h"

#include <algorithm>

namespace {

using Cells = QStringList;

constexpr int severityColumn = 0;

/// The colour of a word in a table's first column (SGR); nullptr: none.
const char* colourOf(const QString& word)
{
    if (word == "error")
        return "\033[31m";
    if (word == "note")
        return "\033[33m";
    if (word == "good")
        return "\033[32m";
    return nullptr;
}

QVector<int> widthsOf(const QVector<Cells>& table)
{
    QVector<int> widths;
    for (const Cells& cells : table) {
        widths.resize(std::max(widths.size(), cells.size()));
        for (int column = 0; column < cells.size(); ++column)
            widths[column] = std::max(widths[column], cells[column].size());
    }
    return widths;
}

/// One line per row, in aligned columns; the first cell in its colour.
QString aligned(QVector<Cells> table, bool inColour)
{
    for (Cells& cells : table)
        std::transform(cells.begin(), cells.end(), cells.begin(), escaped);
    const QVector<int> widths = widthsOf(table);
    QString text;
    for (const Cells& cells : table) {
        QString line;
        for (int column = 0; column < cells.size(); ++column)
            line += cells[column].leftJustified(widths[column] + 2);
        const char* const colour = inColour ? colourOf(cells[severityColumn]) : nullptr;
        const int painted = cells[severityColumn].size();
        while (line.endsWith(' '))
            line.chop(1);
        text += colour != nullptr ? colour + line.left(painted) + "\033[0m" + line.mid(painted) : line;
        text += '\n';
    }
    return text + '\n';
}

QString shown(const Report::Row& row)
{
    if (row.version.isEmpty())
        return {};
    const int version = row.version.toInt();
    return row.stem.isEmpty() ? shownUpdaterVersion(version) : shownVersion(version);
}

QVector<Cells> modelTable(const Report& report)
{
    if (report.rows.isEmpty())
        return {};
    QVector<Cells> table{{"", "model", "keys", "version", "digest", "image"}};
    for (const Report::Row& row : report.rows)
        table.append({row.isGood ? "good" : "error", row.model,
                      row.stem.isEmpty() ? QString("Main...") : row.stem + "...", shown(row),
                      row.digest.isEmpty() ? "no" : "yes", row.image});
    return table;
}

QVector<Cells> fetchedTable(const Report& report)
{
    QVector<Cells> table{{"key", "status", "bytes", "type", "encoding", "digest"}};
    for (const Fetched& one : report.fetched)
        table.append({one.wanted.key, QString::number(one.status), QString::number(one.size), one.type,
                      one.encoding, QString::fromLatin1(one.digest)});
    return table;
}

QVector<Cells> findingTable(const Report& report)
{
    QVector<Cells> table;
    const Findings findings = shortened(report.findings);
    for (const Finding& finding : findings)
        table.append({finding.severity == Severity::error ? "error" : "note",
                      finding.line == 0 ? QString() : QString("line %1").arg(finding.line), finding.key,
                      finding.text});
    return table;
}

QVector<Cells> viewTable(const Report& report)
{
    QVector<Cells> table;
    for (const Report::View& view : report.views)
        table.append(
            {view.viewer.name + " at " + shownVersion(view.viewer.version) + " sees", view.sight.text});
    return table;
}

QString counted(int count, const QString& what)
{
    return QString("%1 %2%3").arg(QString::number(count), what, count == 1 ? "" : "s");
}

} // namespace

QByteArray asText(const Report& report, bool inColour)
{
    QString text = escaped(report.source) + ", " + counted(static_cast<int>(report.size), "byte");
    if (report.genuineness.isRequired)
        text += report.genuineness.isGood() ? ", signature good" : ", signature bad";
    text += "\n\n";
    for (const QVector<Cells>& table : {modelTable(report), viewTable(report), findingTable(report)})
        if (!table.isEmpty())
            text += aligned(table, inColour);
    if (!report.fetched.isEmpty())
        text += aligned(fetchedTable(report), false);
    text += counted(countOf(report.findings, Severity::error), "error") + ", " +
            counted(countOf(report.findings, Severity::note), "note") + '\n';
    return text.toUtf8();
}
