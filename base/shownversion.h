#pragma once

#include <QString>

/// A firmware version as shown to the user: 23 is "2.3".
[[nodiscard]] inline QString shownVersion(int version)
{
    return QString::number(version / 10) + "." + QString::number(version % 10);
}

/// An updater version as shown in an offer: 11 is "0.11".
[[nodiscard]] inline QString shownUpdaterVersion(int version)
{
    return "0." + QString::number(version);
}
