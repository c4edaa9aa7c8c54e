#pragma once

#include "tests/support/boxlines.h"

#include <algorithm>

/// The boxes after which the program ends, as Boxes::lines() gives them.
namespace closing {

inline const QString logComplete =
    informationBox("Download log file is complete.\nYou can find it in program directory.");
inline const QString handOver =
    informationBox("Wait for download new Talvex Updater.\nClose program and insall new version Talvex "
                   "Updater.\nTry again update unit.");
inline const QString noInternet = criticalBox("Problem with internet connection\n");
inline const QString notSaved = criticalBox(
    "Error saving firmware to disk.\nCheck the HD, connections between PC and the unit and to try the "
    "update again.");

[[nodiscard]] inline bool is(const QString& line)
{
    return line == boxline::finished || line == logComplete || line == handOver || line == noInternet ||
           line == notSaved;
}

[[nodiscard]] inline qsizetype count(const QStringList& lines)
{
    return std::count_if(lines.begin(), lines.end(), is);
}

} // namespace closing
