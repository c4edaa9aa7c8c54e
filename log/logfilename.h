#pragma once

#include <QDateTime>
#include <QString>

/// The names that the unit's log may have in the program's directory.
namespace logfilename {

/// The number of names for one second.
inline constexpr int mostAttempts = 99;

/// The name for a program that started at `start`: 2016-03-01_14_05_09_log.enc at attempt 1 and, while names
/// are taken, 2016-03-01_14_05_09-2_log.enc at attempt 2 and so on up to -99. Always in the digits 0 to 9.
[[nodiscard]] QString at(const QDateTime& start, int attempt);

} // namespace logfilename
