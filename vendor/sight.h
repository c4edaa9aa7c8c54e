#pragma once

#include "net/catalogue.h"
#include "vendor/genuineness.h"

#include <QString>

/// What the user of one unit would see after pressing Connect.
struct Sight
{
    const char* kind; ///< for machines: "firmware", "updater", "up-to-date" or "problem"
    QString text;     ///< for people
};

/// For a unit of this stem at this version (27 is 2.7), by the catalogue, its size (bytes, without carriage
/// returns) and its signature.
[[nodiscard]] Sight sightOf(const catalogue::Entries& entries, qint64 size, const QString& stem, int version,
                            const Genuineness& genuineness = {});
