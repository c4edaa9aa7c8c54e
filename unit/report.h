#pragma once

#include "unit/unittype.h"

#include <array>
#include <cstddef>
#include <cstdint>

/// The 64-byte HID report that carries everything sent to or by a unit.
///
///     output report (65 bytes)          input report (64 bytes)
///     0       report ID, always 0x00    0 .. 63  payload
///     1 .. 64 payload
///
/// So payload index i is output index i + 1 and input index i (USB HID 1.11, 8.2: the units use no report
/// IDs; hidapi.h: hid_write still requires a leading zero ID, hid_read omits it).
namespace report {

inline constexpr std::size_t idLength = 1;
inline constexpr std::size_t payloadLength = 64;
inline constexpr std::size_t outputLength = idLength + payloadLength;
inline constexpr std::size_t headerLength = 4; ///< command and packet number, at ReportLayout::headerOffset
inline constexpr std::size_t dataLength = 60;  ///< image bytes, at ReportLayout::payloadOffset

static_assert(headerLength + dataLength == payloadLength, "the two fields fill the report");
static_assert(layoutA.headerOffset + idLength + headerLength == layoutA.payloadOffset &&
                  layoutA.payloadOffset + dataLength == outputLength,
              "header, then data");
static_assert(layoutB.payloadOffset + dataLength == layoutB.headerOffset + idLength &&
                  layoutB.headerOffset + idLength + headerLength == outputLength,
              "data, then header");

using Output = std::array<unsigned char, outputLength>;
using Input = std::array<unsigned char, payloadLength>;

/// Index of the command byte in an output report.
[[nodiscard]] constexpr std::size_t commandIndex(ReportLayout layout)
{
    return layout.headerOffset + idLength;
}

/// The high nibble in place (0x00 to 0xF0): only this part of a command or status byte is a code.
[[nodiscard]] constexpr unsigned char highNibble(unsigned char byte)
{
    return byte & 0xF0U;
}

/// Writes the low `length` bytes (1 to 4) of `value` at `first`, most significant byte first.
void putBigEndian(unsigned char* first, std::size_t length, std::uint32_t value);

/// Reads 4 bytes at `first`, most significant byte first.
[[nodiscard]] std::uint32_t bigEndian32(const unsigned char* first);

/// The high nibble of the status byte in an input report from a unit with this layout.
[[nodiscard]] unsigned char statusCode(const unsigned char* input, ReportLayout layout);

/// The firmware version (0 to 255) in an input report of this model; byte 63 for a type without a model.
[[nodiscard]] std::uint8_t firmwareVersion(const Input& input, UnitType type);

} // namespace report
