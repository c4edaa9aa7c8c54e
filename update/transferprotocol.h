#pragma once

#include "unit/report.h"

#include <QByteArray>

#include <span>

/// The firmware transfer on the wire: what the updater writes, and what a unit's status byte means.
///
///     transfer request        layout A   layout B      (output indexes; the rest is 0x00)
///     0x80                    1          61
///     MD5 of the image        2 .. 33    2 .. 33       32 lower-case hexadecimal digits, in both layouts
///
///     data packet N           layout A   layout B
///     0x0, N in 28 bits       1 .. 4     61 .. 64      big-endian; the command is the top nibble
///     60 image bytes          5 .. 64    1 .. 60
///
///     final packet N          layout A   layout B
///     0xD0                    1          61
///     R                       2          62            valid data bytes, 0 to 59
///     N, low 16 bits          3 .. 4     63 .. 64      big-endian
///     R image bytes, 0x00     5 .. 64    1 .. 60
namespace transferprotocol {

/// Commands and status codes: the high nibble, in place, of the byte at ReportLayout::headerOffset.
enum Code : unsigned char {
    installationFailed = 0x70, ///< the unit rejected the image or failed internally
    requestTransfer = 0x80,    ///< command
    transferAccepted = 0x90,
    transferTimedOut = 0xA0,
    packetsSkipped = 0xB0,
    digestDiffers = 0xC0,
    finalPacket = 0xD0, ///< command
    installationStarted = 0xE0,
    installationFinished = 0xF0,
};

inline constexpr std::size_t digestIndex = 2; ///< in the output; intentional: the same in both layouts
inline constexpr std::size_t digestLength = 32;

using ImageBytes = std::span<const unsigned char>;

/// The request that announces an image by `digest`, its MD5 as 32 lower-case hexadecimal digits.
[[nodiscard]] report::Output buildTransferRequest(ReportLayout layout, const QByteArray& digest);

/// Data packet `number` (from 1; 28 bits are sent) with at most 60 bytes of `data`, padded with 0x00.
[[nodiscard]] report::Output buildDataPacket(ReportLayout layout, std::uint32_t number, ImageBytes data);

/// Final packet `number` (16 bits are sent) with 0 to 59 bytes of `data`, padded with 0x00.
[[nodiscard]] report::Output buildFinalPacket(ReportLayout layout, std::uint32_t number, ImageBytes data);

/// How many bytes of an image of `imageSize` remain at the start of packet `number` (from 1). Negative if the
/// packet would start beyond the image's end.
[[nodiscard]] qint64 bytesLeft(qint64 imageSize, int number);

enum class PacketKind {
    full,         ///< a data packet of 60 bytes
    final,        ///< 0 to 59 bytes: the image ends with this packet
    behindTheEnd, ///< a data packet without data: the image has already ended
};

/// Which kind packet `number` (from 1) of an image of `imageSize` bytes is.
[[nodiscard]] PacketKind packetKind(qint64 imageSize, int number);

/// The bytes that packet `number` (from 1) carries: at most 60, none beyond the image's end.
[[nodiscard]] ImageBytes packetBytes(const QByteArray& image, int number);

/// The percentage of an image of `imageSize` bytes that `packets` full packets amount to, truncated.
[[nodiscard]] int transferPercent(int packets, int imageSize);

} // namespace transferprotocol
