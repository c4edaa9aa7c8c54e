#include "vendor/digestlines.h"

#include "net/catalogue.h"
#include "vendor/valuechecks.h"

namespace {

/// A line of a catalogue as byte offsets: without its line end, and to the next line.
struct Place
{
    int begin;
    int end;
    int next;
};

/// The line with this number, from 1.
Place placeOf(const QByteArray& bytes, int number)
{
    int begin = 0;
    for (int passed = 1; passed < number; ++passed)
        begin = bytes.indexOf('\n', begin) + 1;
    const int feed = bytes.indexOf('\n', begin);
    const int next = feed < 0 ? bytes.size() : feed + 1;
    int end = feed < 0 ? bytes.size() : feed;
    while (end > begin && bytes[end - 1] == '\r')
        --end;
    return {begin, end, next};
}

QByteArray lineEnd(const QByteArray& bytes)
{
    const Place first = placeOf(bytes, 1);
    const QByteArray end = bytes.mid(first.end, first.next - first.end);
    return end.endsWith('\n') ? end : QByteArray("\n");
}

QByteArray replaced(QByteArray bytes, const Place& place, const QByteArray& digest)
{
    const int value = bytes.indexOf('=', place.begin) + 1;
    return bytes.replace(value, place.end - value, digest);
}

QByteArray inserted(QByteArray bytes, const Place& before, const QByteArray& line)
{
    const QByteArray end = bytes.mid(before.end, before.next - before.end);
    if (end.endsWith('\n'))
        return bytes.insert(before.next, line + end);
    return bytes.insert(before.next, lineEnd(bytes) + line); // still without a line end at the end
}

} // namespace

std::optional<QByteArray> withDigest(const QByteArray& bytes, const QString& stem, const QByteArray& digest)
{
    if (bytes.contains('\0'))
        return std::nullopt;
    const QString key = stem + catalogue::suffix::digest;
    const QStringList keys = checks::keysOf(stem);
    int last = 0;
    int existing = 0;
    for (const catalogue::Line& line : catalogue::readLines(catalogue::withoutCarriageReturns(bytes))) {
        if (keys.contains(line.key))
            last = line.number;
        if (line.key == key)
            existing = line.number;
    }
    if (existing != 0)
        return replaced(bytes, placeOf(bytes, existing), digest);
    if (last == 0)
        return std::nullopt;
    return inserted(bytes, placeOf(bytes, last), key.toLatin1() + '=' + digest);
}
