#include "virtualunit/wire.h"

#include <algorithm>
#include <bitset>

namespace virtualunit {
namespace {

/// Bytes of a report that have a meaning; all others must be zero.
using UsedBytes = std::bitset<reportSize>;

std::optional<std::size_t> firstNonZero(const Report& report, const UsedBytes& used)
{
    for (std::size_t i = 0; i < reportSize; ++i)
        if (!used[i] && report[i] != 0)
            return i;
    return std::nullopt;
}

void use(UsedBytes& used, std::size_t first, std::size_t count)
{
    for (std::size_t i = first; i < std::min(first + count, reportSize); ++i)
        used.set(i);
}

std::size_t blockPlace(const ReportLayout& layout)
{
    return layout.payloadOffset - 1U; // the layout counts the report ID, a unit never sees it
}

std::uint32_t headerByte(const Report& report, const ReportLayout& layout, std::size_t index)
{
    return report[layout.headerOffset + index];
}

bool isHeaderZero(const Report& report, const ReportLayout& layout)
{
    const auto first = report.begin() + layout.headerOffset;
    return std::all_of(first, first + headerSize, [](std::uint8_t byte) { return byte == 0; });
}

} // namespace

std::uint8_t commandByte(const Report& report, const ReportLayout& layout)
{
    return report[layout.headerOffset];
}

Command commandOf(const Report& report, const ReportLayout& layout)
{
    const bool headerFirst = layout.headerOffset == 0;
    if (headerFirst || isHeaderZero(report, layout)) {
        if (report[0] == command::logAcknowledge)
            return Command::LogAcknowledge;
        if (report[0] == command::logResend)
            return Command::LogResend;
    }
    switch (commandByte(report, layout)) {
    case command::firmwareRequest:
        return Command::FirmwareRequest;
    case command::finalPacket:
        return Command::FinalPacket;
    case command::logRequest:
        return Command::LogRequest;
    default:
        return (commandByte(report, layout) & 0xF0U) == 0 ? Command::DataPacket : Command::Unknown;
    }
}

std::uint32_t dataPacketNumber(const Report& report, const ReportLayout& layout)
{
    return headerByte(report, layout, 0) << 24U | headerByte(report, layout, 1) << 16U |
           headerByte(report, layout, 2) << 8U | headerByte(report, layout, 3);
}

std::uint16_t finalPacketNumber(const Report& report, const ReportLayout& layout)
{
    return static_cast<std::uint16_t>(headerByte(report, layout, 2) << 8U | headerByte(report, layout, 3));
}

std::size_t finalPacketCount(const Report& report, const ReportLayout& layout)
{
    return headerByte(report, layout, 1);
}

std::span<const std::uint8_t> blockOf(const Report& report, const ReportLayout& layout)
{
    return std::span<const std::uint8_t>(report).subspan(blockPlace(layout), blockSize);
}

std::uint8_t logRequestNumber(const Report& report, const ReportLayout& layout)
{
    return report[layout.headerOffset + 1U];
}

std::string digestText(const Report& report)
{
    return {report.begin() + digestPlace, report.begin() + digestPlace + digestSize};
}

bool isDigestText(const std::string& text)
{
    return text.size() == digestSize && text.find_first_not_of("0123456789abcdef") == std::string::npos;
}

std::optional<std::size_t> requestPadError(const Report& report, const ReportLayout& layout)
{
    UsedBytes used;
    use(used, layout.headerOffset, 1);
    use(used, digestPlace, digestSize);
    return firstNonZero(report, used);
}

std::optional<std::size_t> finalPadError(const Report& report, const ReportLayout& layout)
{
    UsedBytes used;
    use(used, layout.headerOffset, headerSize);
    use(used, blockPlace(layout), std::min(finalPacketCount(report, layout), blockSize));
    return firstNonZero(report, used);
}

std::optional<std::size_t> logRequestPadError(const Report& report, const ReportLayout& layout)
{
    UsedBytes used;
    use(used, layout.headerOffset, 2);
    return firstNonZero(report, used);
}

std::optional<std::size_t> logReplyPadError(const Report& report)
{
    UsedBytes used;
    use(used, 0, 1);
    return firstNonZero(report, used);
}

} // namespace virtualunit
