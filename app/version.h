#pragma once

/// The updater's own version, as the window's title and the updater offer show it.
inline constexpr int updaterVersion = 11;
