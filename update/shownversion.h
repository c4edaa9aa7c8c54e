#pragma once

#include <QString>

/// A firmware version as it is shown: 23 is "2.3".
[[nodiscard]] inline QString shownVersion(int version)
{
    return QString::number(version / 10) + "." + QString::number(version % 10);
}
