#pragma once

#include "tests/support/boxes.h"
#include "tests/support/models.h"
#include "tests/support/texts.h"

#include <algorithm>

/// The boxes that an update or a log download can show, as Boxes::lines() returns them.
namespace boxline {

inline const QString notFound = errorBox(text::notFound).line();
inline const QString noFile = errorBox(text::noImage).line();
inline const QString noRequest = errorBox(text::noRequest, text::deviceError).line();
inline const QString timedOut = errorBox(text::timedOut).line();
inline const QString skipped = errorBox(text::skipped).line();
inline const QString behindTheEnd =
    QStringList{"Critical", text::error, text::behindTheEnd, text::behindTheEndAdvice}.join('|');
inline const QString wrongDigest = errorBox(text::wrongDigest).line();
inline const QString rejected = errorBox(text::rejected).line();
inline const QString upToDate = infoBox(text::upToDate).line();
inline const QString finished = infoBox(text::finished).line();
inline const QString logComplete = infoBox(text::logComplete).line();
inline const QString handOver = infoBox(text::handOver).line();
inline const QString noInternet = errorBox(QString(text::networkProblem) + '\n').line();
inline const QString notSaved = errorBox(QString(text::savingProblem) + '\n' + text::savingAdvice).line();

inline const QString damagedImage =
    errorBox(QString(text::damagedImage) + '\n' + text::nothingChanged).line();

/// The box for a unit connected by itself, or together with its twin.
/// @{
[[nodiscard]] inline QString connected(UnitType type)
{
    return infoBox(models::of(type).connected).line();
}
[[nodiscard]] inline QString pairConnected(UnitType type)
{
    return infoBox(models::of(type).pair).line();
}
/// @}

/// So many boxes that all say the same.
[[nodiscard]] inline QStringList repeated(int times, const QString& line)
{
    return QVector<QString>(times, line).toList();
}

/// How many of these boxes end the program.
[[nodiscard]] inline qsizetype closing(const QStringList& lines)
{
    const QStringList all{finished, logComplete, handOver, noInternet, notSaved, damagedImage};
    return std::count_if(lines.begin(), lines.end(),
                         [&all](const QString& line) { return all.contains(line); });
}

} // namespace boxline
