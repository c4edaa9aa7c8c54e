#pragma once

#include <QByteArray>

/// Stands in for a catalogue key that is built in: tests that link this run the program as built with a key.
namespace testkey {

void set(const QByteArray& publicKey);

} // namespace testkey
