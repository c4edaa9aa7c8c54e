#pragma once

#include <QByteArray>

#include <array>
#include <optional>

/// Signatures of files in the format of minisign. Needs libsodium.
///
///     public key            one line of 56 base64 characters
///     "Ed"                  0 .. 1
///     key ID                2 .. 9
///     Ed25519 public key    10 .. 41
///
///     signature file        four lines, LF or CRLF; the last line may lack its end; more lines are ignored
///     line 1                an unsigned comment of at most 1 KiB, any text
///     line 2                base64 of 74 bytes: label, key ID, 64 bytes of signature
///     line 3                "trusted comment: " and a text
///     line 4                base64 of 64 bytes: signature of those 64 bytes followed by line 3's text
///
///     label                 what line 2 signs
///     "ED"                  the BLAKE2b-512 of the file
///     "Ed"                  the file itself
namespace signature {

/// A larger signature file (in bytes) is refused before it is parsed.
inline constexpr int sizeLimit = 16 * 1024;

struct PublicKey
{
    std::array<unsigned char, 8> id{};
    std::array<unsigned char, 32> bytes{};
};

/// The public key in `line`, which has no line end; nothing if it is not one.
[[nodiscard]] std::optional<PublicKey> parseKey(const QByteArray& line);

/// Checks both signatures in `signatureFile`. Null if `content` is signed by `key`; otherwise what is wrong,
/// as a static text for the diagnostics. Any thread.
[[nodiscard]] const char* fault(const PublicKey& key, const QByteArray& content,
                                const QByteArray& signatureFile);

} // namespace signature
