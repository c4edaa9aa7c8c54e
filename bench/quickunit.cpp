#include "bench/quickunit.h"

#include <utility>

namespace {

constexpr std::size_t reportSize = 64;
constexpr std::size_t commandPlace = 1; // behind the report ID

enum Command : std::uint8_t {
    dataPacket = 0x00,
    logRequest = 0x10,
    logAcknowledge = 0x30,
    transferRequest = 0x80,
    finalPacket = 0xD0,
};

enum Answer : std::uint8_t {
    idle = 0x00,
    logHeader = 0x20,
    fullPart = 0x40,
    lastPart = 0x50,
    accepted = 0x90
};

std::vector<std::uint8_t> reportOf(Answer answer)
{
    std::vector<std::uint8_t> report(reportSize);
    report.front() = answer;
    return report;
}

std::vector<std::uint8_t> headerOf(int parts)
{
    constexpr std::size_t countPlace = 33; // 32 bits, most significant byte first
    std::vector<std::uint8_t> report = reportOf(logHeader);
    for (std::size_t i = 0; i < 4; ++i)
        report[countPlace + i] = static_cast<std::uint8_t>(parts >> (24 - 8 * i));
    return report;
}

void tell(const std::function<void()>& callback)
{
    if (callback)
        callback();
}

} // namespace

virtualbus::DeviceRecord QuickUnit::record()
{
    virtualbus::DeviceRecord record;
    record.productId = findUnitModel(UNIT_HB4)->productId;
    record.product = "HB4";
    return record;
}

bool QuickUnit::open(virtualbus::Milliseconds)
{
    answer = reportOf(idle);
    return true;
}

void QuickUnit::close(virtualbus::Milliseconds)
{
    answer.clear();
}

virtualunit::VirtualUnit::Receipt QuickUnit::write(std::span<const std::uint8_t> bytes,
                                                   virtualbus::Milliseconds)
{
    switch (bytes[commandPlace] & 0xF0U) {
    case dataPacket:
        tell(onDataPacket);
        break;
    case finalPacket:
        tell(onFinalPacket);
        break;
    case transferRequest:
        answer = reportOf(accepted);
        tell(onRequest);
        break;
    case logRequest:
        partsSent = 0;
        answer = headerOf(logParts);
        break;
    case logAcknowledge:
        if (partsSent < logParts)
            answer = logPart();
        break;
    default:
        break;
    }
    return {};
}

std::vector<std::uint8_t> QuickUnit::logPart()
{
    ++partsSent;
    tell(onLogPart);
    return reportOf(partsSent < logParts ? fullPart : lastPart);
}

std::optional<std::vector<std::uint8_t>> QuickUnit::takeInput(virtualbus::Milliseconds)
{
    if (answer.empty())
        return std::nullopt;
    return std::exchange(answer, {});
}
