#pragma once

/// The updater's own version: "11" in the window's title, "0.11" in the offer of a newer one. CMake reads it
/// from this line.
inline constexpr int updaterVersion = 11;

/// The threshold of an updater's offer: only a higher version than our own is newer.
[[nodiscard]] constexpr bool isNewerUpdater(int version)
{
    return version > updaterVersion;
}
