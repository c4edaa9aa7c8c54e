#pragma once

#include "base/version.h"
#include "unit/unittype.h"

#include <QByteArray>
#include <QMap>
#include <QString>

/// The version catalogue: lines "key=value" that tell the newest versions and where they lie.
namespace catalogue {

/// A larger catalogue (bytes, after removal of carriage returns) is reported, and used all the same.
inline constexpr int reportedSize = 10245;

/// Catalogue version of the updater itself from which on it is newer than this one.
inline constexpr int UPDATER_VERSION_THRESHOLD = updaterVersion + 1;

using Entries = QMap<QString, QString>;

/// What the catalogue says for one model and for the updater; an absent key is an empty string.
struct Offer
{
    QString newVersion;
    QString binUrl;
    QString changeLogUrl;
    QString mainVersion;
    QString mainChangeLogUrl;
    QString mainBinUrl;
};

enum class Decision {
    incomplete,   ///< a required value is missing or empty
    newerUpdater, ///< comes before any firmware
    newerFirmware,
    upToDate,
};

/// The bytes without any carriage return, wherever it stands.
[[nodiscard]] QByteArray withoutCarriageReturns(QByteArray bytes);

/// Decodes UTF-8 up to the first NUL byte and takes the lines apart at their first "=". Keys and values keep
/// their blanks; a later line replaces an earlier one of the same key; lines without "=" are remarks.
[[nodiscard]] Entries parse(const QByteArray& bytes);

/// What the model's keys begin with, for example "HB4" or "PLT70". Intentional: "HB2" for a type without a
/// model.
[[nodiscard]] QString keyStem(UnitType type);

/// The entries under this key stem, and the updater's own.
[[nodiscard]] Offer lookUp(const Entries& entries, const QString& stem);

/// Compares the offer with the unit's version in decimal text.
[[nodiscard]] Decision decide(const Offer& offer, const QString& curVersion);

/// The number that `text` begins with (blanks before it do not count), in the C locale: 27 for "27=x", 0.0
/// for a text that begins with no number.
[[nodiscard]] double leadingNumber(const QString& text);

} // namespace catalogue
