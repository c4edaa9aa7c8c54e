#pragma once

#include <cstdint>
#include <deque>

namespace virtualunit {

/// High nibbles of the status byte.
namespace status {
inline constexpr std::uint8_t idle = 0x0;
inline constexpr std::uint8_t accepted = 0x9;
inline constexpr std::uint8_t timedOut = 0xA;
inline constexpr std::uint8_t packetsSkipped = 0xB;
inline constexpr std::uint8_t installing = 0xE;
inline constexpr std::uint8_t installed = 0xF;
inline constexpr std::uint8_t wrongDigest = 0xC;
inline constexpr std::uint8_t rejected = 0x7;
} // namespace status

/// The status that a unit's reports carry: a state that is repeated, and outcomes that precede it, each in
/// one report.
class Status
{
public:
    explicit Status(bool repeatsOutcome) : repeats(repeatsOutcome) {}

    /// From now on every report carries `nibble`.
    void hold(std::uint8_t nibble)
    {
        news = news || nibble != held;
        held = nibble;
    }

    /// The next report carries `nibble`; a unit that repeats its outcomes keeps sending it.
    void tell(std::uint8_t nibble)
    {
        if (repeats)
            return hold(nibble);
        outcomes.push_back(nibble);
        news = true;
    }

    /// The nibble of the report being built.
    [[nodiscard]] std::uint8_t take()
    {
        const std::uint8_t nibble = outcomes.empty() ? held : outcomes.front();
        if (!outcomes.empty())
            outcomes.pop_front();
        news = !outcomes.empty();
        return nibble;
    }

    /// Whether something was set that no report has carried yet.
    [[nodiscard]] bool hasNews() const { return news; }

private:
    bool repeats;
    bool news = false;
    std::uint8_t held = status::idle;
    std::deque<std::uint8_t> outcomes;
};

} // namespace virtualunit
