#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

/// The catalogue with this digest for the stem's image, in place of the effective one, or on a new line after
/// the stem's last one, with the same line end. All other bytes are unchanged.
/// Nothing if the program would not find it there: the stem has no line, or a NUL byte ends the text.
[[nodiscard]] std::optional<QByteArray> withDigest(const QByteArray& catalogue, const QString& stem,
                                                   const QByteArray& digest);
