#pragma once

#include "tests/support/testimage.h"

/// The files of a journey: the server's firmware, the unit's log and the image of an earlier update, which
/// is on disk from the start.
/// @{
inline QByteArray newImage()
{
    return imageOf(500 * 60 + 17); // full packets and a partial one
}

inline QByteArray unitLog()
{
    return imageOf(400 * 63 + 5); // full parts and a partial one
}

/// A longer log: the program takes at most one part per ms.
inline QByteArray longLog()
{
    return imageOf(20000 * 63 + 5);
}

inline constexpr auto oldImage = "the image of the last update";
/// @}
