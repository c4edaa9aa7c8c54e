#pragma once

#include "fuzz/input.h"

#include <QByteArrayList>

#include <hidapi.h>

#include <vector>

/// The HID library of the fuzz targets: up to two units whose every answer the fuzzer makes up.
///
/// A read takes one byte of the input: 0 is a time-out, 1 a failure, 2 a report cut to 1 byte; any other is a
/// report of 64 bytes with this byte wherever a code may stand (0 and 60). Behind 0x20, a log header, the
/// input goes on with the number of parts (16 bits); behind 0x50, a log's last part, with its length byte.
/// Where the input ends, a read with a time-out brings nothing, and one without says that there is no log.
///
/// A read never waits; a write takes its bytes, or fails where the plan says so.
namespace fuzzedunit {

/// A read of the program, as the unit answered it.
struct Read
{
    int unit = 0;       ///< 0 or 1
    bool waits = false; ///< without a time-out
    int result = 0;     ///< as the caller got it
    QByteArray report;  ///< 64 bytes, or none
};

/// From now on the units answer out of this input, which must outlive the run. `failing`: bit n set, each
/// write whose number is n modulo 8 fails.
void begin(Input& input, std::uint8_t failing);

[[nodiscard]] hid_device* handle(int unit);

[[nodiscard]] const std::vector<Read>& reads();

/// What was written to this unit and taken, 65 bytes each; `tried`: also what failed.
[[nodiscard]] const QByteArrayList& written(int unit);
[[nodiscard]] const QByteArrayList& tried(int unit);

} // namespace fuzzedunit
