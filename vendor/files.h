#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

/// The whole file; nothing, after a complaint, if it cannot be read.
[[nodiscard]] std::optional<QByteArray> readFile(const QString& path);
