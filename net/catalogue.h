#pragma once

#include "unit/unittype.h"

#include <QByteArray>
#include <QMap>
#include <QString>
#include <QVector>

/// The version catalogue: lines "key=value" with the newest versions and their addresses.
///
///     key                                   value
///     MainVer                               the newest updater, 9 for 0.9
///     MainChangeLog, MacMainBin             the addresses of its change log and of the updater itself
///     HB4Ver                                the newest firmware of this stem's models, 27 for 2.7
///     HB4Bin, HB4ChangeLog                  the addresses of its image and change log
///     HB4Sha256                             the image's SHA-256 in hexadecimal digits
namespace catalogue {

/// A larger catalogue (in bytes, without carriage returns) is reported, but still used.
inline constexpr int reportedSize = 10245;

/// The updater's own keys.
namespace key {
inline constexpr auto mainVersion = "MainVer";
inline constexpr auto mainChangeLog = "MainChangeLog";
inline constexpr auto mainImage = "MacMainBin"; ///< intentional: on every platform
} // namespace key

/// What follows a model's stem in its keys.
namespace suffix {
inline constexpr auto version = "Ver";
inline constexpr auto image = "Bin";
inline constexpr auto changeLog = "ChangeLog";
inline constexpr auto digest = "Sha256";
} // namespace suffix

/// A line with "=".
struct Line
{
    int number; ///< from 1
    QString key;
    QString value;
};

using Entries = QMap<QString, QString>;

/// What the catalogue says about one model and about the updater; an absent key is an empty string.
struct Offer
{
    QString newVersion;
    QString binUrl;
    QString changeLogUrl;
    QString mainVersion;
    QString mainChangeLogUrl;
    QString mainBinUrl;
    QString imageDigest{}; ///< SHA-256 of the image at binUrl, in hexadecimal digits
};

enum class Decision {
    incomplete,   ///< a required value is missing or empty
    newerUpdater, ///< takes precedence over any firmware
    newerFirmware,
    upToDate,
};

/// The bytes without carriage returns.
[[nodiscard]] QByteArray withoutCarriageReturns(QByteArray bytes);

/// Decodes UTF-8 up to the first NUL byte and splits each line at its first "=". Keys and values keep their
/// blanks; lines without "=" are remarks.
[[nodiscard]] QVector<Line> readLines(const QByteArray& bytes);

/// The entries of those lines: a later line replaces an earlier one with the same key.
[[nodiscard]] Entries parse(const QByteArray& bytes);

/// What the model's keys begin with, for example "HB4" or "PLT70". Intentional: "HB2" for a type without a
/// model.
[[nodiscard]] QString keyStem(UnitType type);

/// The entries under this key stem, and the updater's own.
[[nodiscard]] Offer lookUp(const Entries& entries, const QString& stem);

/// Compares the offer with the unit's version in decimal text. Where the image's digest is required, one that
/// is malformed counts as missing.
[[nodiscard]] Decision decide(const Offer& offer, const QString& curVersion, bool digestRequired = false);

/// True for 64 hexadecimal digits, in either case.
[[nodiscard]] bool isDigest(const QString& text);

/// The SHA-256 of an image as the catalogue gives it, in lower case.
[[nodiscard]] QString digestOf(const QByteArray& image);

/// The number at the start of `text` (leading blanks are skipped), in the C locale: 27 for "27=x", 0.0 for a
/// text that does not start with a number.
[[nodiscard]] double leadingNumber(const QString& text);

} // namespace catalogue
