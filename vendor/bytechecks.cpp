#include "base/sizelimit.h"
#include "net/catalogue.h"
#include "vendor/checks.h"

#include <QTextCodec>

namespace checks {

namespace {

bool isUtf8(const QByteArray& bytes)
{
    QTextCodec::ConverterState state;
    (void)QTextCodec::codecForName("UTF-8")->toUnicode(bytes.constData(), bytes.size(), &state);
    return state.invalidChars == 0 && state.remainingChars == 0;
}

/// The number of the first line that is not UTF-8, from 1; 0 if all are.
int firstForeignLine(const QByteArray& bytes)
{
    int number = 0;
    for (const QByteArray& line : bytes.split('\n')) {
        ++number;
        if (!isUtf8(line))
            return number;
    }
    return 0;
}

void checkSize(const QByteArray& bytes, Findings& found)
{
    const auto size = catalogue::withoutCarriageReturns(bytes).size();
    if (bytes.size() > sizeLimit)
        found.append({Severity::error,
                      "too-large",
                      0,
                      {},
                      QString("more than %1 bytes: the updater gives up").arg(sizeLimit)});
    else if (size > catalogue::reportedSize)
        found.append({Severity::error,
                      "too-large",
                      0,
                      {},
                      QString("%1 bytes without carriage returns: the updater reports a problem above %2")
                          .arg(size)
                          .arg(catalogue::reportedSize)});
}

} // namespace

Findings ofBytes(const QByteArray& served)
{
    Findings found;
    checkSize(served, found);
    if (served.size() > sizeLimit)
        return found;
    if (served.startsWith("\xEF\xBB\xBF"))
        found.append(
            {Severity::note, "byte-order-mark", 1, {}, "starts with a byte order mark, which is ignored"});
    if (const int line = firstForeignLine(served); line != 0)
        found.append({Severity::error, "not-utf-8", line, {}, "not UTF-8"});
    if (const auto nul = served.indexOf('\0'); nul >= 0)
        found.append({Severity::error,
                      "nul",
                      served.left(nul).count('\n') + 1,
                      {},
                      "contains a NUL byte: the updater ignores the rest"});
    return found;
}

} // namespace checks
