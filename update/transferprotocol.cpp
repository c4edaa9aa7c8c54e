#include "update/transferprotocol.h"

#include "base/percent.h"

#include <algorithm>

namespace transferprotocol {

namespace {

constexpr auto dataLength = static_cast<qint64>(report::dataLength);
constexpr std::uint32_t packetNumberMask = 0x0FFF'FFFF; // the top nibble is the command, 0x0 for data
constexpr std::size_t countOffset = 1;                  // in the final packet's header
constexpr std::size_t shortNumberOffset = 2;
constexpr std::size_t shortNumberLength = 2;
static_assert(shortNumberOffset + shortNumberLength == report::headerLength);

void putData(report::Output& packet, ReportLayout layout, ImageBytes data)
{
    std::copy_n(data.begin(), std::min(data.size(), report::dataLength),
                packet.begin() + layout.payloadOffset);
}

} // namespace

report::Output buildTransferRequest(ReportLayout layout, const QByteArray& digest)
{
    report::Output request{};
    request[report::commandIndex(layout)] = requestTransfer;
    std::copy_n(digest.begin(), std::min<std::size_t>(static_cast<std::size_t>(digest.size()), digestLength),
                request.begin() + digestIndex);
    return request;
}

report::Output buildDataPacket(ReportLayout layout, std::uint32_t number, ImageBytes data)
{
    report::Output packet{};
    report::putBigEndian(&packet[report::commandIndex(layout)], report::headerLength,
                         number & packetNumberMask);
    putData(packet, layout, data);
    return packet;
}

report::Output buildFinalPacket(ReportLayout layout, std::uint32_t number, ImageBytes data)
{
    report::Output packet{};
    unsigned char* header = &packet[report::commandIndex(layout)];
    header[0] = finalPacket;
    header[countOffset] = static_cast<unsigned char>(data.size());
    report::putBigEndian(header + shortNumberOffset, shortNumberLength, number);
    putData(packet, layout, data);
    return packet;
}

qint64 bytesLeft(qint64 imageSize, int number)
{
    return imageSize - (number * dataLength - dataLength);
}

PacketKind packetKind(qint64 imageSize, int number)
{
    const qint64 left = bytesLeft(imageSize, number);
    if (left < 0)
        return PacketKind::behindTheEnd;
    return left < dataLength ? PacketKind::final : PacketKind::full;
}

ImageBytes packetBytes(const QByteArray& image, int number)
{
    const qint64 left = bytesLeft(image.size(), number);
    if (number < 1 || left <= 0)
        return {};
    const auto* bytes = reinterpret_cast<const unsigned char*>(image.constData());
    return {bytes + (image.size() - left), static_cast<std::size_t>(std::min(left, dataLength))};
}

int transferPercent(int packets, int imageSize)
{
    return percent(packets * dataLength, imageSize);
}

} // namespace transferprotocol
