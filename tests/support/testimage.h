#pragma once

#include <QByteArray>

/// An image of nonzero bytes that differ from packet to packet.
[[nodiscard]] inline QByteArray imageOf(int size)
{
    QByteArray image(size, '\0');
    for (int i = 0; i < size; ++i)
        image[i] = static_cast<char>(i % 251 + 1);
    return image;
}
