#pragma once

#include <QJsonArray>
#include <QObject>

/// The string-based connections that the program has made since its start, in order.
namespace connections {

/// One JSON object per connection: sender and receiver (class names), senderName and receiverName (object
/// names at the time of the call), signal and slot (as the caller wrote them), type (Qt::ConnectionType),
/// connected, and self (sender and receiver are one object).
[[nodiscard]] QJsonArray made();

} // namespace connections
