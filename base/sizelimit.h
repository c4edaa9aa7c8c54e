#pragma once

#include <QtGlobal>

/// Limit in bytes for one answer of the update server, and for an image on disk. Anything larger is not a
/// catalogue, change log or image (a large image has 15 MB).
inline constexpr qint64 sizeLimit = 64LL * 1024 * 1024;
