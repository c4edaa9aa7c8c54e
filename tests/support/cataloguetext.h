#pragma once

#include <QMap>
#include <QString>

/// The paths of a test's update server: the catalogue's, where the program looks for it, and those that a
/// good catalogue for a unit HB4 tells.
inline constexpr auto cataloguePath = "/wp-content/uploads/versions.txt";
inline constexpr auto changeLogPath = "/logs/HB4.txt";
inline constexpr auto mainChangeLogPath = "/logs/updater.txt";
inline constexpr auto imagePath = "/bin/HB4.sb";

/// A catalogue's values by their keys.
using CatalogueEntries = QMap<QString, QString>;

/// A catalogue that offers this image (addresses) for the models of one key stem, and an updater that is
/// current.
[[nodiscard]] inline CatalogueEntries catalogueEntries(const QString& stem, const QString& version,
                                                       const QString& image, const QString& changeLog)
{
    return {
        {"MainVer", "11"},
        {"MainChangeLog", "http://update-server/logs/updater.txt"},
        {"MacMainBin", "http://update-server/bin/updater.zip"},
        {stem + "Ver", version},
        {stem + "Bin", image},
        {stem + "ChangeLog", changeLog},
    };
}

/// What a server sends; an entry with a null value is left out.
[[nodiscard]] inline QByteArray catalogueText(const CatalogueEntries& entries, const QString& lineEnd = "\n")
{
    QString text;
    for (auto entry = entries.begin(); entry != entries.end(); ++entry)
        if (!entry.value().isNull())
            text += entry.key() + '=' + entry.value() + lineEnd;
    return text.toUtf8();
}
