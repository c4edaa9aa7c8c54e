#pragma once

#include <QtGlobal>

/// Bytes of one answer of the update server, or of an image on disk; more is no catalogue, change log or
/// image (a large image has 15 MB).
inline constexpr qint64 sizeLimit = 64LL * 1024 * 1024;
