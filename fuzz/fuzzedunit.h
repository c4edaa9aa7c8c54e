#pragma once

#include "fuzz/input.h"

#include <QByteArrayList>

#include <hidapi.h>

#include <vector>

/// The HID library of the fuzz targets: up to two units whose answers all come from the fuzzer.
///
/// A read consumes one byte of the input: 0 is a time-out, 1 a failure, 2 a report cut to 1 byte; any other
/// value is a report of 64 bytes with this byte at each offset that may hold a code (0 and 60). After 0x20,
/// a log header, the input continues with the number of parts (16 bits); after 0x50, a log's last part, with
/// its length byte. At the end of the input, a read with a time-out returns nothing, and one without reports
/// that there is no log.
///
/// A read never blocks; a write succeeds unless it is set to fail.
namespace fuzzedunit {

/// A read by the program, and the unit's answer.
struct Read
{
    int unit = 0;       ///< 0 or 1
    bool waits = false; ///< without a time-out
    int result = 0;     ///< as returned to the caller
    QByteArray report;  ///< 64 bytes, or empty
};

/// Makes the units answer from this input, which must outlive the run. If bit n of `failing` is set, every
/// write whose number is n modulo 8 fails.
void begin(Input& input, std::uint8_t failing);

[[nodiscard]] hid_device* handle(int unit);

[[nodiscard]] const std::vector<Read>& reads();

/// The writes to this unit, 65 bytes each, including those that failed.
[[nodiscard]] const QByteArrayList& tried(int unit);

} // namespace fuzzedunit
