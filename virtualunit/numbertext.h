#pragma once

#include <charconv>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace virtualunit {

/// A decimal number from 0 to 2147483647 that fills the whole text, or nothing.
[[nodiscard]] inline std::optional<int> readNumber(std::string_view text)
{
    int number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc() || end != text.data() + text.size() || number < 0)
        return std::nullopt;
    return number;
}

/// `value` as `digits` lower-case hexadecimal digits, without prefix.
[[nodiscard]] inline std::string hexText(std::uint64_t value, std::size_t digits)
{
    std::string text(digits, '0');
    for (std::size_t i = digits; i > 0; --i, value >>= 4U)
        text[i - 1] = "0123456789abcdef"[value & 0xFU];
    return text;
}

/// Two lower-case hexadecimal digits per byte, without separators.
[[nodiscard]] inline std::string hexText(std::span<const std::uint8_t> bytes)
{
    std::string text;
    text.reserve(bytes.size() * 2);
    for (const std::uint8_t byte : bytes)
        text += hexText(byte, 2);
    return text;
}

} // namespace virtualunit
