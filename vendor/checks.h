#pragma once

#include "vendor/finding.h"

#include <QByteArray>

/// What the program would trip over in a catalogue, or read differently from the person who wrote it.
namespace checks {

/// All findings about a catalogue as it is served, in line order; those about no single line come first.
/// A program with a key requires digests too.
[[nodiscard]] Findings ofCatalogue(const QByteArray& served, bool areDigestsRequired = false);

/// Its bytes: size, encoding, NUL, byte order mark. Above `sizeLimit` that is all there is to tell.
[[nodiscard]] Findings ofBytes(const QByteArray& served);

} // namespace checks
