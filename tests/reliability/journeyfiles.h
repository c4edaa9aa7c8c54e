#pragma once

#include <QByteArray>

/// The files of a journey: the server's firmware, the unit's log and, on disk from the beginning, the image
/// of an earlier update. Each byte differs from its neighbours.
/// @{
inline QByteArray patternOf(int size)
{
    QByteArray bytes(size, '\0');
    for (int i = 0; i < size; ++i)
        bytes[i] = static_cast<char>(i % 251 + 1);
    return bytes;
}

inline QByteArray newImage()
{
    return patternOf(500 * 60 + 17); // full packets and a rest
}

inline QByteArray unitLog()
{
    return patternOf(400 * 63 + 5); // full parts and a rest
}

inline constexpr auto oldImage = "the image of the last update";
/// @}
