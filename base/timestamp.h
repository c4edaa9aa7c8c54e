#pragma once

#include <QDateTime>
#include <QLocale>
#include <QString>

/// Moments as text, in the digits 0 to 9 wherever the user lives: QDateTime's own conversion follows the
/// system's locale, and digits beyond the local encoding would all become "?".
namespace timestamp {

/// As part of a file's name: 2016-03-01_14_05_09.
[[nodiscard]] inline QString forFileName(const QDateTime& time)
{
    return QLocale::c().toString(time, "yyyy-MM-dd_hh_mm_ss");
}

/// In front of a line: 2016-03-01_14:05:09.
[[nodiscard]] inline QString forLine(const QDateTime& time)
{
    return QLocale::c().toString(time, "yyyy-MM-dd_hh:mm:ss");
}

} // namespace timestamp
