#pragma once

/// The updater's own version: "11" in the window's title, "0.11" in the offer of a newer one. CMake reads it
/// from this line.
inline constexpr int updaterVersion = 11;

/// The lowest updater version in the catalogue that is newer than this updater. The name is kept as it is,
/// unlike those of other constants.
inline constexpr int UPDATER_VERSION_THRESHOLD = updaterVersion + 1;
