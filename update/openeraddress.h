#pragma once

#include <QString>

/// The address as it is handed to the system's opener: each byte above 0x7F of its UTF-8 as "%" and two
/// hexadecimal digits, as the local encoding may lack the letter. Every ASCII character stays as it is, also
/// one that QUrl would alter.
[[nodiscard]] inline QString openerAddress(const QString& address)
{
    constexpr unsigned char lastAscii = 0x7F;
    QByteArray ascii;
    for (const char byte : address.toUtf8()) {
        if (static_cast<unsigned char>(byte) > lastAscii)
            ascii += '%' + QByteArray(1, byte).toHex().toUpper();
        else
            ascii += byte;
    }
    return QString::fromLatin1(ascii);
}
