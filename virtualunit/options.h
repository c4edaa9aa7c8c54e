#pragma once

#include "virtualunit/faults.h"
#include "virtualunit/identity.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace virtualunit {

using Milliseconds = std::int64_t;

/// Everything that makes one virtual unit.
struct Options
{
    UnitType type = UNIT_HB4;
    std::uint8_t version = 10;                    ///< firmware version, 10 is "1.0"
    std::optional<std::string> product;           ///< USB product string; nothing: the model's own
    bool hasProduct = true;                       ///< false: the unit is listed without strings
    bool hasManufacturer = true;                  ///< false: the unit is listed without its maker's name
    std::string imagePath;                        ///< the received image is written here; empty: nowhere
    std::string journalPath;                      ///< journal lines are appended here; empty: nowhere
    std::optional<std::vector<std::uint8_t>> log; ///< the unit's log; nothing: it has none
    Faults faults;
    Milliseconds periodMs = 8; ///< between two input reports; 0: only when opened and when the status changes
    Milliseconds acceptMs = 0; ///< from the request to its answer
    Milliseconds installMs = 50; ///< from the start of the installation to its end
    std::uint8_t lowNibble = 5;  ///< of every status byte; a host must not care
    bool repeatsOutcome = false; ///< an outcome is repeated in every report instead of reported once
    bool floodsLog = false;      ///< the periodic reports continue while a log is served
    std::size_t flood = 0; ///< reports waiting for the host at any time, however fast it reads; 0: no flood
};

/// One or more units, or what is wrong with the text they were read from.
struct ParsedOptions
{
    std::vector<Options> units;
    std::string error; ///< empty: none
};

/// Reads "MODEL[,key=value]..." units separated by ';' (README.md lists the keys). Reads the file that a
/// `log` key names. On an error there are no units.
[[nodiscard]] ParsedOptions parseOptions(std::string_view text);

/// The product string that the unit is listed with, or nothing.
[[nodiscard]] std::optional<std::string> productOf(const Options& options);

} // namespace virtualunit
