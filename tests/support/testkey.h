#pragma once

#include <QByteArray>

/// Replaces the built-in catalogue key: tests that link this run the program as if it was built with a key.
namespace testkey {

void set(const QByteArray& publicKey);

} // namespace testkey
