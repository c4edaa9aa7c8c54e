#pragma once

#include <QDateTime>
#include <QLocale>
#include <QString>

/// Times as text, in the digits 0 to 9 in every locale: QDateTime's own conversion follows the system's
/// locale, and digits that the local encoding lacks would all become "?".
namespace timestamp {

/// For file names: 2016-03-01_14_05_09.
[[nodiscard]] inline QString forFileName(const QDateTime& time)
{
    return QLocale::c().toString(time, "yyyy-MM-dd_hh_mm_ss");
}

/// For the start of a line: 2016-03-01_14:05:09.
[[nodiscard]] inline QString forLine(const QDateTime& time)
{
    return QLocale::c().toString(time, "yyyy-MM-dd_hh:mm:ss");
}

} // namespace timestamp
