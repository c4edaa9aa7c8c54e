#pragma once

#include "unit/unittype.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>

/// The unit's reading of the 64-byte reports a host writes. Pure functions, no state.
/// Every index is into the 64 payload bytes; the host's report ID has been removed before.
namespace virtualunit {

inline constexpr std::size_t reportSize = 64;
inline constexpr std::size_t blockSize = 60;  ///< image bytes in a full data packet
inline constexpr std::size_t headerSize = 4;  ///< command and packet number
inline constexpr std::size_t digestPlace = 1; ///< the digest text of a request, in both layouts
inline constexpr std::size_t digestSize = 32; ///< lower-case hexadecimal digits
static_assert(blockSize + headerSize == reportSize);

using Report = std::array<std::uint8_t, reportSize>;

/// Bytes the host may put in the command's place, or, for the last two, in byte 0 for any model.
namespace command {
inline constexpr std::uint8_t firmwareRequest = 0x80;
inline constexpr std::uint8_t finalPacket = 0xD0;
inline constexpr std::uint8_t logRequest = 0x10;
inline constexpr std::uint8_t logAcknowledge = 0x30;
inline constexpr std::uint8_t logResend = 0x70;
} // namespace command

enum class Command {
    FirmwareRequest,
    DataPacket,
    FinalPacket,
    LogRequest,
    LogAcknowledge,
    LogResend,
    Unknown
};

/// What the host means by a report. Acknowledge and resend are in byte 0 for every model; where the header is
/// elsewhere, packet number 0, which no data packet has, sets them apart from a data packet.
[[nodiscard]] Command commandOf(const Report& report, const ReportLayout& layout);

/// The byte at the command place, for complaints about an unknown one.
[[nodiscard]] std::uint8_t commandByte(const Report& report, const ReportLayout& layout);

/// The 28 bits of a data packet's number, most significant byte first; the command in front of them is 0.
[[nodiscard]] std::uint32_t dataPacketNumber(const Report& report, const ReportLayout& layout);

/// The 16 bits of its number that a final packet keeps.
[[nodiscard]] std::uint16_t finalPacketNumber(const Report& report, const ReportLayout& layout);

/// Valid bytes that a final packet announces: 0 to 59 in a good one, 0 to 255 as read.
[[nodiscard]] std::size_t finalPacketCount(const Report& report, const ReportLayout& layout);

/// The 60 data bytes of a data or final packet; they belong to `report`.
[[nodiscard]] std::span<const std::uint8_t> blockOf(const Report& report, const ReportLayout& layout);

/// The number of a log request: the byte behind its command.
[[nodiscard]] std::uint8_t logRequestNumber(const Report& report, const ReportLayout& layout);

/// The 32 characters in the digest's place, whatever they are.
[[nodiscard]] std::string digestText(const Report& report);

/// Whether `text` is 32 digits 0-9 or a-f.
[[nodiscard]] bool isDigestText(const std::string& text);

/// Index of the first byte that should be zero and is not; nothing if there is none.
/// @{
[[nodiscard]] std::optional<std::size_t> requestPadError(const Report& report, const ReportLayout& layout);
[[nodiscard]] std::optional<std::size_t> finalPadError(const Report& report, const ReportLayout& layout);
[[nodiscard]] std::optional<std::size_t> logRequestPadError(const Report& report, const ReportLayout& layout);
[[nodiscard]] std::optional<std::size_t> logReplyPadError(const Report& report); ///< acknowledge and resend
/// @}

} // namespace virtualunit
