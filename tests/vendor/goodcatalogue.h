#pragma once

#include <QByteArray>
#include <QByteArrayList>

/// A catalogue without any finding: updater 0.11, then firmware 2.7 for every stem. Line ends are LF. The
/// updater's keys stand in lines 2 to 4, HB4's in lines 7 to 9.
[[nodiscard]] QByteArray goodCatalogue();

/// The same with the first `from`, which it must hold, replaced.
[[nodiscard]] QByteArray catalogueWith(const QByteArray& from, const QByteArray& to);

/// The good one followed by this digest for every stem.
[[nodiscard]] QByteArray catalogueWithDigests(const QByteArray& digest);

/// Every stem, in the models' order.
[[nodiscard]] const QByteArrayList& everyStem();

/// 64 hexadecimal digits.
inline constexpr auto someDigest = "0123456789abcdef0123456789ABCDEF0123456789abcdef0123456789ABCDEF";
