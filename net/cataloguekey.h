#pragma once

#include <QByteArray>

/// The key built into the program (TALVEX_CATALOGUE_KEY), if any, with which the catalogue must be signed.
namespace cataloguekey {

/// Checks a catalogue, byte for byte as received, against its signature file. Null if it is genuine;
/// otherwise what is wrong, as a static text for the diagnostics.
using Judge = const char* (*)(const QByteArray& catalogue, const QByteArray& signatureFile);

/// Null in a build without a key.
[[nodiscard]] Judge judge();

[[nodiscard]] inline bool isBuiltIn()
{
    return judge() != nullptr;
}

} // namespace cataloguekey
