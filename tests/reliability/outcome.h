#pragma once

#include <QString>
#include <QStringList>

/// Descriptions of what happens to the unit, the files and the program.
/// @{
namespace unitword {
inline constexpr auto updated = "the unit has the new firmware";
inline constexpr auto oneDeckUpdated = "only one deck has the new firmware";
inline constexpr auto notUpdated = "the unit keeps its firmware";
inline constexpr auto untouched = "nothing is sent to the unit";
} // namespace unitword

namespace diskword {
inline constexpr auto newImage = "the new image is on disk, the old one is its backup";
inline constexpr auto onlyNewImage = "the new image is on disk";
inline constexpr auto oldImage = "the old image is on disk";
inline constexpr auto onlyBackup = "only the old image is on disk, as the backup";
inline constexpr auto cutImage = "a truncated image is on disk, the old one is its backup";
inline constexpr auto noImage = "no image is on disk";
inline constexpr auto noLog = "there is no log file";
inline constexpr auto wholeLog = "the whole log is on disk";
inline constexpr auto emptyLog = "the log file is empty";
inline constexpr auto cutLog = "what was received is on disk";
inline constexpr auto otherLog = "the log on disk has repeated parts or other wrong bytes";
} // namespace diskword

namespace endword {
inline constexpr auto ends = "the program ends";
inline constexpr auto waits = "the program waits for the user";
inline constexpr auto gone = "the program has been killed";
} // namespace endword
/// @}

/// What a user sees, and is left with, when a journey is over.
struct Outcome
{
    QStringList boxes; ///< their texts, without duplicates and without the boxes of a good run
    QString unit;      ///< empty: no update was intended, or the program did not live to report it
    QString disk;
    QString end;

    /// "“Text.”; the unit ...; the new image ...; the program ...".
    [[nodiscard]] QString sentence() const
    {
        QStringList parts;
        for (const QString& box : boxes)
            parts += QString::fromUtf8("“%1”").arg(box);
        parts += {unit, disk, end};
        parts.removeAll(QString());
        return parts.join("; ");
    }
};
