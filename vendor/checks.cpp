#include "vendor/checks.h"

#include "base/sizelimit.h"
#include "net/catalogue.h"
#include "vendor/valuechecks.h"

#include <QMap>

#include <algorithm>

namespace checks {

namespace {

using catalogue::Line;
using Lines = QVector<Line>;

bool hasBlanks(const QString& text)
{
    return text.trimmed() != text;
}

void checkLine(const Line& line, Findings& found)
{
    static const QStringList known = knownKeys();
    if (!known.contains(line.key.trimmed())) {
        found.append({Severity::error, "unknown-key", line.number, line.key, "no model has this key"});
        return;
    }
    if (hasBlanks(line.key))
        found.append({Severity::error, "blanks", line.number, line.key,
                      "the key has leading or trailing blanks: the updater does not know it"});
    if (hasBlanks(line.value))
        found.append(
            {Severity::error, "blanks", line.number, line.key, "the value has leading or trailing blanks"});
}

void checkDuplicates(const QString& key, const Lines& lines, Findings& found)
{
    if (lines.size() < 2)
        return;
    constexpr int mostNumbers = 10;
    QStringList numbers;
    for (const Line& line : lines.mid(0, mostNumbers))
        numbers.append(QString::number(line.number));
    QString where = numbers.join(", ");
    if (lines.size() > mostNumbers)
        where += QString(" and %1 more").arg(lines.size() - mostNumbers);
    found.append({Severity::error, "duplicate-key", lines.last().number, key,
                  "appears on lines " + where + ": only the last one counts"});
}

} // namespace

Findings ofCatalogue(const QByteArray& served, bool areDigestsRequired)
{
    Findings found = ofBytes(served);
    if (served.size() > sizeLimit)
        return found;
    QMap<QString, Lines> byKey;
    for (const Line& line : catalogue::readLines(catalogue::withoutCarriageReturns(served))) {
        checkLine(line, found);
        byKey[line.key].append(line);
    }
    for (auto entry = byKey.cbegin(); entry != byKey.cend(); ++entry)
        checkDuplicates(entry.key(), entry.value(), found);
    for (const QString& key : knownKeys()) {
        const auto lines = byKey.constFind(key);
        found += ofValue(key, lines == byKey.constEnd() ? nullptr : &lines->last(), areDigestsRequired);
    }
    std::stable_sort(found.begin(), found.end(),
                     [](const Finding& one, const Finding& other) { return one.line < other.line; });
    return found;
}

} // namespace checks
