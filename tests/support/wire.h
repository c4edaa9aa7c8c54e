#pragma once

#include "tests/support/models.h"

#include <QByteArray>
#include <QCryptographicHash>
#include <QList>

#include <initializer_list>
#include <utility>

/// The reports with which a host sends an image: 65 bytes each, starting with the report ID. They follow
/// what a unit expects and do not use the program's builders.
namespace wire {

using Bytes = QByteArray;

/// 65 bytes, all zero except those given by index.
[[nodiscard]] inline Bytes report(std::initializer_list<std::pair<int, int>> bytes)
{
    Bytes written(65, '\0');
    for (const auto& [index, value] : bytes)
        written[index] = static_cast<char>(value);
    return written;
}

[[nodiscard]] inline Bytes digestOf(const Bytes& image)
{
    return QCryptographicHash::hash(image, QCryptographicHash::Md5).toHex();
}

[[nodiscard]] inline Bytes request(const models::Model& model, const Bytes& digest)
{
    return report({{model.command(), 0x80}}).replace(2, digest.size(), digest);
}

[[nodiscard]] inline Bytes dataPacket(const models::Model& model, unsigned number, const Bytes& block)
{
    const int command = model.command();
    Bytes written = report({{command, (number >> 24) & 0x0F},
                            {command + 1, (number >> 16) & 0xFF},
                            {command + 2, (number >> 8) & 0xFF},
                            {command + 3, number & 0xFF}});
    return written.replace(model.data(), 60, block.leftJustified(60, '\0'));
}

[[nodiscard]] inline Bytes finalPacket(const models::Model& model, unsigned number, const Bytes& rest)
{
    const int command = model.command();
    Bytes written = report({{command, 0xD0},
                            {command + 1, rest.size()},
                            {command + 2, (number >> 8) & 0xFF},
                            {command + 3, number & 0xFF}});
    return written.replace(model.data(), rest.size(), rest);
}

/// The packet with this number, counted from 1: a full one, or the final one with the remaining bytes.
[[nodiscard]] inline Bytes packet(const models::Model& model, const Bytes& image, int number)
{
    const Bytes block = image.mid((number - 1) * 60, 60);
    const auto build = block.size() == 60 ? dataPacket : finalPacket;
    return build(model, static_cast<unsigned>(number), block);
}

/// All reports that carry an image, without the request before them.
[[nodiscard]] inline QList<Bytes> packets(const models::Model& model, const Bytes& image)
{
    QList<Bytes> all;
    while (all.size() * 60 <= image.size())
        all << packet(model, image, all.size() + 1);
    return all;
}

} // namespace wire
