#pragma once

#include <QString>

#include <optional>

/// An address of the catalogue, taken apart for a request over plain HTTP.
struct PlainAddress
{
    QString host; ///< with its port, if one was written
    QString path; ///< from its "/" on, with the query; never empty

    /// "http://" in front of host and path, whatever the catalogue's scheme was.
    [[nodiscard]] QString url() const;
};

/// Takes "scheme://host/path" apart. Nothing for an address in which "//" does not occur exactly once or
/// that has nothing behind its host.
[[nodiscard]] std::optional<PlainAddress> takeApart(const QString& address);
