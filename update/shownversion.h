#pragma once

#include <QString>

/// A firmware version as it is shown: 23 is "2.3".
[[nodiscard]] inline QString shownVersion(int version)
{
    return QString::number(version / 10) + "." + QString::number(version % 10);
}

/// A version of the updater as an offer shows it: 11 is "0.11".
[[nodiscard]] inline QString shownUpdaterVersion(int version)
{
    return "0." + QString::number(version);
}
