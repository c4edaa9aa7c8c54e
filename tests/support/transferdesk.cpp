#include "tests/support/transferdesk.h"

#include <hidapi.h>

#include <algorithm>

namespace {

hid_device* open(const ScriptedUnit& unit)
{
    hid_device* const handle = hid_open_path(unit.path().c_str());
    if (handle == nullptr)
        qFatal("cannot open %s", unit.path().c_str());
    return handle;
}

/// One packet with the number and the data; fewer than 60 bytes make the final packet.
Bytes packetOf(ReportLayout layout, int number, const QByteArray& data)
{
    const bool isPlayer = layout.headerOffset == 60;
    const std::size_t header = isPlayer ? 61 : 1;
    const std::size_t first = isPlayer ? 1 : 5;
    Bytes packet(65, 0);
    if (data.size() < 60) {
        packet[header] = 0xD0;
        packet[header + 1] = static_cast<std::uint8_t>(data.size());
    } else {
        packet[header] = static_cast<std::uint8_t>(number >> 24 & 0x0F);
        packet[header + 1] = static_cast<std::uint8_t>(number >> 16 & 0xFF);
    }
    packet[header + 2] = static_cast<std::uint8_t>(number >> 8 & 0xFF);
    packet[header + 3] = static_cast<std::uint8_t>(number & 0xFF);
    std::copy(data.begin(), data.end(), packet.begin() + static_cast<std::ptrdiff_t>(first));
    return packet;
}

} // namespace

TransferDesk::TransferDesk(UnitType type, std::optional<UnitType> secondType)
    : unit(ScriptedUnit::plugIn(type))
{
    window->unitType = type;
    window->headerOffset = unit->layout.headerOffset;
    window->payloadOffset = unit->layout.payloadOffset;
    window->device = open(*unit);
    if (secondType) {
        second = ScriptedUnit::plugIn(*secondType);
        window->secondDevice = open(*second);
        window->deckCount = 2;
    }
    callsBefore = virtualbus::calls().size();
}

void TransferDesk::tick(int count)
{
    for (int i = 0; i < count; ++i)
        window->transmitSlot();
}

void TransferDesk::startStream(const QByteArray& image)
{
    load(image);
    tick();
    unit->sayStatus(0x90);
    if (second)
        second->sayStatus(0x90);
    tick();
}

QStringList TransferDesk::calls() const
{
    const std::vector<virtualbus::Call> all = virtualbus::calls();
    QStringList lines;
    for (std::size_t i = callsBefore; i < all.size(); ++i) {
        virtualbus::Call call = all[i];
        call.bytes.clear();
        lines += QString::fromStdString(lineOf(call));
    }
    return lines;
}

QString TransferDesk::phase() const
{
    return QString("%1 %2 %3 %4")
        .arg(window->transferStarted)
        .arg(window->applyingPhase)
        .arg(window->requestSent)
        .arg(window->packetNumber);
}

std::vector<Bytes> packetsOf(ReportLayout layout, const QByteArray& image)
{
    std::vector<Bytes> packets;
    for (int number = 1; (number - 1) * 60 <= image.size(); ++number)
        packets.push_back(packetOf(layout, number, image.mid((number - 1) * 60, 60)));
    return packets;
}

QByteArray hexOf(const Bytes& bytes)
{
    return QByteArray(reinterpret_cast<const char*>(bytes.data()), static_cast<int>(bytes.size())).toHex();
}
