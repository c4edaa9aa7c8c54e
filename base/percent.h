#pragma once

#include <QtGlobal>

#include <algorithm>
#include <limits>

/// `done` in per cent of `total`: done x 100 / total, truncated towards zero, not clamped to 100.
/// Defined for every input: a total of 0 gives 0; a quotient outside int's range gives its nearest limit.
[[nodiscard]] constexpr int percent(qint64 done, qint64 total)
{
    if (total == 0)
        return 0;
    constexpr qint64 mayBeMultiplied = std::numeric_limits<qint64>::max() / 100;
    if (done > mayBeMultiplied || done < -mayBeMultiplied) { // the last two digits do not matter
        done /= 100;
        total = total / 100 != 0 ? total / 100 : total;
    }
    const qint64 quotient = done * 100 / total;
    return static_cast<int>(
        std::clamp<qint64>(quotient, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()));
}
