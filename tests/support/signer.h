#pragma once

#include <QByteArray>
#include <QString>
#include <QTemporaryDir>

/// Signs files with minisign, as a vendor does.
class Signer
{
public:
    /// Creates a key pair without a password.
    Signer();
    /// Uses an existing secret key without a password; its public key is in "KEY.pub".
    explicit Signer(const QString& secretKey);

    enum class Kind {
        digest, ///< "ED", minisign's default
        whole,  ///< "Ed"
    };

    /// 56 characters.
    [[nodiscard]] QByteArray publicKey() const;

    /// The signature file for `content`.
    [[nodiscard]] QByteArray sign(const QByteArray& content, Kind kind = Kind::digest,
                                  const QByteArray& trustedComment = "of the tests") const;

private:
    QTemporaryDir folder;
    QString key;
};

/// The signature file with line 2 (`line` = 1) or line 4 (`line` = 3) replaced by these bytes, encoded, or
/// by this text.
/// @{
[[nodiscard]] QByteArray withDecodedLine(const QByteArray& file, int line, const QByteArray& bytes);
[[nodiscard]] QByteArray withLine(const QByteArray& file, int line, const QByteArray& text);
/// @}
[[nodiscard]] QByteArray decodedLine(const QByteArray& file, int line);

/// The bytes with one bit flipped; bit 0 is the lowest bit of the first byte.
[[nodiscard]] QByteArray withBitFlipped(QByteArray bytes, int bit);
