#pragma once

#include <QNetworkReply>
#include <QNetworkRequest>
#include <QString>

/// How the server is asked, and which of its answers count.
namespace exchange {

inline constexpr int silenceLimitMs = 30000;

/// Bytes; an answer announcing this much is reported, not refused.
inline constexpr qint64 reportedTotal = 15000001;

/// Qt repairs what it can in the address.
[[nodiscard]] QNetworkRequest requestFor(const QString& address);

[[nodiscard]] bool hasGoodStatus(const QNetworkReply& reply);

/// True for a finished reply that counts. Qt reports no error for a bare redirect, an empty answer and the
/// like; only status 200 counts.
[[nodiscard]] bool isAnswer(const QNetworkReply& reply);

/// True if the answer cannot be an image: a truncated compressed image shows no error, and a captive portal's
/// page must never become firmware.
[[nodiscard]] bool isNoImage(const QNetworkReply& answer);

} // namespace exchange
