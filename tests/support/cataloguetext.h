#pragma once

#include "tests/support/texts.h"

#include <QMap>
#include <QString>

/// The paths on a test's update server: the one where the program looks for the catalogue, and those named
/// by a good catalogue for an HB4.
inline constexpr auto cataloguePath = "/wp-content/uploads/versions.txt";
inline constexpr auto changeLogPath = "/logs/HB4.txt";
inline constexpr auto mainChangeLogPath = "/logs/updater.txt";
inline constexpr auto imagePath = "/bin/HB4.sb";

/// A catalogue's values by their keys.
using CatalogueEntries = QMap<QString, QString>;

/// A catalogue that offers this image for the models of one key stem, and an up-to-date updater. `image` and
/// `changeLog` are addresses.
[[nodiscard]] inline CatalogueEntries catalogueEntries(const QString& stem, const QString& version,
                                                       const QString& image, const QString& changeLog)
{
    return {
        {"MainVer", updater::own},
        {"MainChangeLog", "http://update-server/logs/updater.txt"},
        {"MacMainBin", "http://update-server/bin/updater.zip"},
        {stem + "Ver", version},
        {stem + "Bin", image},
        {stem + "ChangeLog", changeLog},
    };
}

/// The catalogue as a server sends it; entries with a null value are left out.
[[nodiscard]] inline QByteArray catalogueText(const CatalogueEntries& entries, const QString& lineEnd = "\n")
{
    QString text;
    for (auto entry = entries.begin(); entry != entries.end(); ++entry)
        if (!entry.value().isNull())
            text += entry.key() + '=' + entry.value() + lineEnd;
    return text.toUtf8();
}
