#pragma once

#include "net/catalogue.h"
#include "vendor/finding.h"

#include <QStringList>

namespace checks {

/// Every key that the program knows: the updater's own, then those of each stem.
[[nodiscard]] QStringList knownKeys();
[[nodiscard]] QStringList updaterKeys();
[[nodiscard]] QStringList keysOf(const QString& stem);

/// What is wrong with the value of a known key, on the line that counts; nullptr: there is no such line.
[[nodiscard]] Findings ofValue(const QString& key, const catalogue::Line* line);

} // namespace checks
