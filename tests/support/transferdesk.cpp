#include "tests/support/transferdesk.h"

#include "tests/support/wire.h"

TransferDesk::TransferDesk(UnitType type, std::optional<UnitType> secondType)
    : unit(ScriptedUnit::plugIn(type))
{
    window.state().unitType = type;
    window.state().headerOffset = unit->layout.headerOffset;
    window.state().payloadOffset = unit->layout.payloadOffset;
    window.state().device = unit->opened();
    if (secondType) {
        second = ScriptedUnit::plugIn(*secondType);
        window.state().secondDevice = second->opened();
        window.state().deckCount = 2;
    }
    callsBefore = virtualbus::calls().size();
}

void TransferDesk::tick(int count)
{
    for (int i = 0; i < count; ++i)
        window->transmitSlot();
}

void TransferDesk::writeRequest(const QByteArray& image)
{
    load(image);
    tick();
}

void TransferDesk::sayStatus(int status, int ofSecond)
{
    if (status != silent)
        unit->sayStatus(static_cast<std::uint8_t>(status));
    if (ofSecond != silent)
        second->sayStatus(static_cast<std::uint8_t>(ofSecond));
}

void TransferDesk::startStream(const QByteArray& image)
{
    writeRequest(image);
    sayStatus(0x90, second ? 0x90 : silent);
    tick();
}

std::vector<Bytes> TransferDesk::packets() const
{
    std::vector<Bytes> all = writes();
    all.erase(all.begin());
    return all;
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
        .arg(window.state().transferStarted)
        .arg(window.state().applyingPhase)
        .arg(window.state().requestSent)
        .arg(window.state().packetNumber);
}

std::vector<Bytes> packetsOf(const models::Model& model, const QByteArray& image)
{
    std::vector<Bytes> packets;
    for (const QByteArray& packet : wire::packets(model, image))
        packets.push_back(bytesOf(packet));
    return packets;
}

QByteArray hexOf(const Bytes& bytes)
{
    return QByteArray(reinterpret_cast<const char*>(bytes.data()), static_cast<int>(bytes.size())).toHex();
}
