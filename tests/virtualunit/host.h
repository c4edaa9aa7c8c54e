#pragma once

#include "tests/support/testimage.h"
#include "tests/support/wire.h"
#include "virtualunit/virtualunit.h"

#include <QRegularExpression>
#include <QString>
#include <QStringList>

#include <stdexcept>

/// A host for tests of the virtual unit, with its own clock, which only advances when told to.
namespace host {

/// One model of each family.
inline constexpr const models::Model& older = models::hb4;
inline constexpr const models::Model& players = models::plt70;

using namespace wire;
using Bytes = QByteArray;

/// The options of exactly one unit, such as "hb4,version=23".
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

    /// Reads all input reports that are due.
    QList<Bytes> read()
    {
        QList<Bytes> reports;
        while (const auto input = unit.takeInput(now))
            reports << Bytes(reinterpret_cast<const char*>(input->data()), static_cast<int>(input->size()));
        return reports;
    }

    void wait(int ms) { now += ms; }

    /// The high nibbles of the status byte in all reports of the next `ms`, as hexadecimal digits, without
    /// consecutive repetitions.
    QString statuses(int ms)
    {
        wait(ms);
        QString digits;
        for (const Bytes& input : read()) {
            const int place = models::of(unit.settings().type).layout.headerOffset;
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
