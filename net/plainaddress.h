#pragma once

#include <QString>

#include <optional>

/// An address from the catalogue, split for a request over plain HTTP.
struct PlainAddress
{
    QString host; ///< with its port, if there is one
    QString path; ///< from its "/", with the query; never empty

    /// "http://" followed by host and path, whatever scheme the catalogue had.
    [[nodiscard]] QString url() const;
};

/// Splits "scheme://host/path". Nothing for an address in which "//" does not occur exactly once, or that has
/// nothing after its host.
[[nodiscard]] std::optional<PlainAddress> takeApart(const QString& address);
