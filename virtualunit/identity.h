#pragma once

#include "unit/unittype.h"

#include <optional>
#include <string_view>

namespace virtualunit {

/// What one model is called: in options, and by its USB product string.
struct Identity
{
    UnitType type;
    std::string_view name;    ///< in options: lower case, with '-'
    std::string_view product; ///< USB product string
};

/// The two mixers without an accepted product string of their own carry the first model's, so that they can
/// be connected; an option sets any other.
inline constexpr auto identities = std::to_array<Identity>({
    {UNIT_HB4, "hb4", "HB4"},
    {UNIT_HB2, "hb2", "HB2"},
    {UNIT_HBX, "hbx", "HBX"},
    {UNIT_ZEQ_PRO, "zeq-pro", "HB4"},
    {UNIT_ZEQ_IO, "zeq-io", "HB4"},
    {UNIT_PANEL2V, "panel2v", "PANEL"},
    {UNIT_PANEL4V, "panel4v", "PANEL4"},
    {UNIT_DSK10, "dsk10", "DSK-10"},
    {UNIT_DSK6, "dsk6", "DSK-6"},
    {UNIT_LMB1, "lmb1", "LMB-1"},
    {UNIT_LMB2, "lmb2", "LMB-2"},
    {UNIT_PLT70, "plt70", "PLT-70"},
    {UNIT_TRK300_LEFT, "trk300-left", "TRK-300 L"},
    {UNIT_TRK300_RIGHT, "trk300-right", "TRK-300 R"},
    {UNIT_TRK900_LEFT, "trk900-left", "TRK-900 L"},
    {UNIT_TRK900_RIGHT, "trk900-right", "TRK-900 R"},
    {UNIT_PLT65, "plt65", "PLT-65"},
});

static_assert(
    [] {
        for (std::size_t i = 0; i < identities.size(); ++i)
            if (identities[i].type != static_cast<UnitType>(i))
                return false;
        return identities.size() == unitModels.size();
    }(),
    "the table is indexed by UnitType");

[[nodiscard]] constexpr const Identity& identityOf(UnitType type)
{
    return identities.at(static_cast<std::size_t>(type));
}

/// The model with this option name, or nothing.
[[nodiscard]] constexpr std::optional<UnitType> findTypeByName(std::string_view name)
{
    for (const Identity& identity : identities)
        if (identity.name == name)
            return identity.type;
    return std::nullopt;
}

} // namespace virtualunit
