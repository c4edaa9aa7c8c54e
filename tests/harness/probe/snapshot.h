#pragma once

#include <QJsonObject>

/// What a user currently sees of this program, as JSON. GUI thread only; changes nothing.
namespace snapshot {

/// windows: the visible main windows with their widgets by object name; boxes: the visible message boxes.
/// Each carries winId (as text: it may exceed a double) and its position on the screen in pixels.
[[nodiscard]] QJsonObject take();

} // namespace snapshot
