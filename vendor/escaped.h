#pragma once

#include <QString>

/// The text made safe for a terminal: an unprintable character or a line break becomes "\u{1B}", a backslash
/// "\\".
[[nodiscard]] QString escaped(const QString& text);
