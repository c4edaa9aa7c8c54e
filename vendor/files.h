#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

/// The whole file, or its first `sizeLimit` + 1 bytes if it is larger; nothing, after a complaint, if it
/// cannot be read.
[[nodiscard]] std::optional<QByteArray> readFile(const QString& path);
