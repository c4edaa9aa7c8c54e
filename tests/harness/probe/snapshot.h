#pragma once

#include <QJsonArray>
#include <QJsonObject>

/// What a user sees of this program at this moment, as JSON. GUI thread only; nothing is changed.
namespace snapshot {

/// windows: the visible main windows with their widgets by object name; boxes: the visible message boxes.
/// Each carries winId (as text: it may exceed a double) and its place on the screen in pixels.
[[nodiscard]] QJsonObject take();

/// The meta-methods an object's own class adds, in order: signature, parameters (names), kind.
[[nodiscard]] QJsonArray methodsOf(const QObject& object);

} // namespace snapshot
