#pragma once

#include <QByteArray>
#include <QByteArrayList>

/// A catalogue without findings: updater 0.11, then firmware 2.7 for every stem. Lines end in LF. The
/// updater's keys are in lines 2 to 4, HB4's in lines 7 to 9.
[[nodiscard]] QByteArray goodCatalogue();

/// The good catalogue with the first `from` replaced by `to`. It must contain `from`.
[[nodiscard]] QByteArray catalogueWith(const QByteArray& from, const QByteArray& to);

/// The good catalogue followed by this digest for every stem.
[[nodiscard]] QByteArray catalogueWithDigests(const QByteArray& digest);

/// All stems, in the models' order.
[[nodiscard]] const QByteArrayList& everyStem();

/// 64 hexadecimal digits.
inline constexpr auto someDigest = "0123456789abcdef0123456789ABCDEF0123456789abcdef0123456789ABCDEF";
