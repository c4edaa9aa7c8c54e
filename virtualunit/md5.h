#pragma once

#include <QCryptographicHash>

#include <cstdint>
#include <string>
#include <vector>

namespace virtualunit {

/// MD5 of `bytes` as 32 lower-case hexadecimal digits.
[[nodiscard]] inline std::string md5Text(const std::vector<std::uint8_t>& bytes)
{
    const auto view =
        QByteArray::fromRawData(reinterpret_cast<const char*>(bytes.data()), static_cast<int>(bytes.size()));
    return QCryptographicHash::hash(view, QCryptographicHash::Md5).toHex().toStdString();
}

} // namespace virtualunit
