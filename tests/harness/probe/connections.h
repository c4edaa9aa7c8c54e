#pragma once

#include <QJsonArray>
#include <QObject>

/// The string-signature connections that the program made, in their order, since it was started.
namespace connections {

/// One object a row: sender and receiver (class names), senderName and receiverName (object names at the time
/// of the call), signal and slot (as the caller wrote them), type (Qt::ConnectionType), connected, and self
/// (sender and receiver are one object).
[[nodiscard]] QJsonArray made();

/// A living object of this class that took part in a connection; nullptr: there is none.
[[nodiscard]] QObject* objectOfClass(const QByteArray& className);

} // namespace connections
