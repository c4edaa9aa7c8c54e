#pragma once

#include <QSslConfiguration>

#include <optional>

/// A new self-signed certificate, for a name that is not the server's, and its key, for a server. Nullopt if
/// there is no openssl.
[[nodiscard]] std::optional<QSslConfiguration> selfSigned();
