#pragma once

/// The longest texts of the two labels. The window leaves room for them from the start.
namespace labeltexts {

inline constexpr const char* longestOfTransfer = "Transfer: download new version";
inline constexpr const char* longestOfUpdate = "Update: in progress. Do not power off device!";

} // namespace labeltexts
