#pragma once

#include "net/catalogue.h"
#include "vendor/finding.h"

#include <QStringList>

namespace checks {

/// Every key that the program knows: the updater's own, then those of each stem.
[[nodiscard]] QStringList knownKeys();
[[nodiscard]] QStringList updaterKeys();
[[nodiscard]] QStringList keysOf(const QString& stem);

/// What is wrong with the value of a known key, on its effective line; nullptr: it has no line. A program
/// with a key requires digests too.
[[nodiscard]] Findings ofValue(const QString& key, const catalogue::Line* line, bool areDigestsRequired);

} // namespace checks
