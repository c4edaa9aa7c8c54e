#pragma once

#include "tests/support/testimage.h"

/// The files of a journey: the server's firmware, the unit's log and, on disk from the beginning, the image
/// of an earlier update.
/// @{
inline QByteArray newImage()
{
    return imageOf(500 * 60 + 17); // full packets and a rest
}

inline QByteArray unitLog()
{
    return imageOf(400 * 63 + 5); // full parts and a rest
}

/// The same log, only longer: the program takes at most a part in a ms.
inline QByteArray longLog()
{
    return imageOf(20000 * 63 + 5);
}

inline constexpr auto oldImage = "the image of the last update";
/// @}
