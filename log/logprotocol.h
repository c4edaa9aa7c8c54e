#pragma once

#include "unit/report.h"

#include <QByteArray>

/// The log download on the wire: what the updater writes and how a unit's replies are read.
///
///     written                 output index            (the rest is 0x00)
///     log request             layout A   layout B
///       0x10                  1          61
///       number                2          62
///     acknowledge             1: 0x30                 in both layouts
///     resend                  1: 0x70                 in both layouts
///
///     reply                   input index
///     0x20 log header         1 .. 32  MD5 of the log, 32 characters
///                             33 .. 36 number of parts, big-endian
///     0x60 no log
///     0x40 data part          1 .. 63  log bytes
///     0x50 last part          1        number of log bytes, 0 to 62
///                             2 ..     log bytes
namespace logprotocol {

/// The first byte of a reply; here the whole byte is the code.
enum Reply : unsigned char {
    logHeader = 0x20,
    dataPart = 0x40,
    lastPart = 0x50,
    noLog = 0x60,
};

inline constexpr unsigned char requestNumber = 1; ///< the only number ever requested

/// Requests the log; only the low 8 bits of `number` are sent. The command's place depends on the model.
[[nodiscard]] report::Output buildRequest(UnitType type, int number);
[[nodiscard]] report::Output buildAcknowledge();
[[nodiscard]] report::Output buildResend();

/// Readers of the 64 bytes of an input report.
[[nodiscard]] unsigned char replyCode(const unsigned char* reply);
[[nodiscard]] bool endsHeaderWait(const unsigned char* reply);      ///< a header, or that there is no log
[[nodiscard]] QByteArray headerDigest(const unsigned char* reply);  ///< 32 bytes
[[nodiscard]] std::int32_t headerParts(const unsigned char* reply); ///< negative from 2^31 parts on
[[nodiscard]] QByteArray dataPartBytes(const unsigned char* reply); ///< 63 bytes
[[nodiscard]] QByteArray lastPartBytes(const unsigned char* reply); ///< 0 to 62 bytes, whatever is announced

} // namespace logprotocol
