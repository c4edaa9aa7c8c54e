#pragma once

#include <QDateTime>
#include <QString>

/// The names that the unit's log may have in the program's directory.
namespace logfilename {

/// How many names there are for one second.
inline constexpr int mostAttempts = 99;

/// The name for a program that started at `start`: 2016-03-01_14_05_09_log.enc at attempt 1, and for each
/// name that was taken the next, 2016-03-01_14_05_09-2_log.enc at attempt 2, up to -99. In the digits 0 to 9.
[[nodiscard]] QString at(const QDateTime& start, int attempt);

} // namespace logfilename
