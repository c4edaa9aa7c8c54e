#pragma once

#include "virtualunit/virtualunit.h"

#include <QByteArray>
#include <QCryptographicHash>
#include <QList>
#include <QRegularExpression>
#include <QString>
#include <QStringList>

#include <stdexcept>
#include <utility>

/// A host for tests of the virtual unit. It has its own idea of the wire, in literal indexes of the 65-byte
/// output report, and its own clock, which stands still unless told to go.
namespace host {

/// Where one family of models keeps things, as indexes of the 65-byte output report.
struct Family
{
    const char* model;
    int command;
    int data;
};
inline constexpr Family older{"hb4", 1, 5};
inline constexpr Family players{"plt70", 61, 1};

using Bytes = QByteArray;

/// 65 zero bytes but for the ones given by index.
inline Bytes report(std::initializer_list<std::pair<int, int>> bytes)
{
    Bytes written(65, '\0');
    for (const auto& [index, value] : bytes)
        written[index] = static_cast<char>(value);
    return written;
}

inline Bytes digestOf(const Bytes& image)
{
    return QCryptographicHash::hash(image, QCryptographicHash::Md5).toHex();
}

inline Bytes request(const Family& family, const Bytes& digest)
{
    return report({{family.command, 0x80}}).replace(2, digest.size(), digest);
}

inline Bytes dataPacket(const Family& family, unsigned number, const Bytes& block)
{
    Bytes written = report({{family.command, (number >> 24) & 0x0F},
                            {family.command + 1, (number >> 16) & 0xFF},
                            {family.command + 2, (number >> 8) & 0xFF},
                            {family.command + 3, number & 0xFF}});
    return written.replace(family.data, 60, block.leftJustified(60, '\0'));
}

inline Bytes finalPacket(const Family& family, unsigned number, const Bytes& rest)
{
    Bytes written = report({{family.command, 0xD0},
                            {family.command + 1, rest.size()},
                            {family.command + 2, (number >> 8) & 0xFF},
                            {family.command + 3, number & 0xFF}});
    return written.replace(family.data, rest.size(), rest);
}

/// All reports that carry an image behind its request.
inline QList<Bytes> packets(const Family& family, const Bytes& image)
{
    QList<Bytes> all;
    int sent = 0;
    for (; image.size() - sent >= 60; sent += 60)
        all << dataPacket(family, static_cast<unsigned>(all.size()) + 1, image.mid(sent, 60));
    return all << finalPacket(family, static_cast<unsigned>(all.size()) + 1, image.mid(sent));
}

/// An image in which no two blocks are alike.
inline Bytes imageOf(int size)
{
    Bytes image(size, '\0');
    for (int i = 0; i < size; ++i)
        image[i] = static_cast<char>((i * 7 + i / 60) & 0xFF);
    return image;
}

/// "hb4,version=23": one unit.
inline virtualunit::Options options(const QString& text)
{
    const virtualunit::ParsedOptions parsed = virtualunit::parseOptions(text.toStdString());
    if (parsed.units.size() != 1)
        throw std::invalid_argument(parsed.error);
    return parsed.units.front();
}

/// A host with one unit, opened at time 1000.
class Host
{
public:
    explicit Host(const QString& text) : Host(host::options(text)) {}
    explicit Host(const virtualunit::Options& unitOptions) : unit(unitOptions), opened(unit.open(now)) {}

    virtualunit::VirtualUnit::Receipt write(const Bytes& bytes)
    {
        return unit.receive({reinterpret_cast<const std::uint8_t*>(bytes.constData()),
                             static_cast<std::size_t>(bytes.size())},
                            now);
    }

    /// All input reports that are due.
    QList<Bytes> read()
    {
        QList<Bytes> reports;
        while (const auto input = unit.takeInput(now))
            reports << Bytes(reinterpret_cast<const char*>(input->data()), static_cast<int>(input->size()));
        return reports;
    }

    void wait(int ms) { now += ms; }

    /// The high nibbles of the status byte in all reports of the next `ms`, as hexadecimal digits; a digit
    /// that repeats the one before is left out.
    QString statuses(int ms)
    {
        wait(ms);
        QString digits;
        for (const Bytes& input : read()) {
            const int place = findUnitModel(unit.settings().type)->type >= UNIT_PLT70 ? 60 : 0;
            const QChar digit = QString::number(static_cast<unsigned char>(input.at(place)) >> 4, 16).at(0);
            if (!digits.endsWith(digit))
                digits += digit;
        }
        return digits;
    }

    QStringList journal() const
    {
        QStringList lines;
        for (const std::string& line : unit.journalLines())
            lines << QString::fromStdString(line);
        return lines;
    }

    QStringList errors() const { return journal().filter(QRegularExpression("^error ")); }

    Bytes image() const
    {
        return Bytes(reinterpret_cast<const char*>(unit.image().data()),
                     static_cast<int>(unit.image().size()));
    }

    virtualunit::Milliseconds now = 1000;
    virtualunit::VirtualUnit unit;
    bool opened;
};

} // namespace host
