#pragma once

#include <QString>

/// The address as passed to the system's opener: each UTF-8 byte above 0x7F becomes "%" and two hexadecimal
/// digits, as the local encoding may lack the character. Every ASCII character stays as it is, including
/// those that QUrl would alter.
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
