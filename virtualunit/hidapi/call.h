#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace virtualbus {

/// One call of a hidapi function, recorded when it returns. Fields that the function does not have stay
/// empty.
struct Call
{
    std::string function; ///< "hid_write"
    int handle = 0;       ///< 1 is the first one opened; 0: none, or an open that failed
    std::optional<std::uint16_t> vendor = {};
    std::optional<std::uint16_t> product = {};
    std::string path = {};
    std::optional<std::size_t> length = {}; ///< bytes asked for or given, in wide characters for strings
    std::optional<int> timeout = {};        ///< ms; -1: unlimited
    std::vector<std::uint8_t> bytes = {};   ///< all bytes written, the report ID first
    std::optional<int> result = {};         ///< the return value; of an enumeration, the number of records
};

/// "hid_write handle=1 length=65 bytes=0080... result=65", without a line end.
[[nodiscard]] std::string lineOf(const Call& call);

} // namespace virtualbus
