#include "net/signature.h"

#include <QByteArrayList>

#include <sodium.h>

#include <algorithm>

namespace signature {

namespace {

constexpr std::size_t labelLength = 2;
constexpr int longestUntrustedComment = 1024; // bytes, without the line's end
constexpr auto trustedPrefix = "trusted comment: ";

using Label = std::array<unsigned char, labelLength>;
using Bytes = std::array<unsigned char, crypto_sign_BYTES>;
constexpr Label keyLabel{'E', 'd'};
constexpr Label wholeFile{'E', 'd'};
constexpr Label digestOfFile{'E', 'D'};

constexpr std::size_t keyLength = labelLength + sizeof(PublicKey::id) + sizeof(PublicKey::bytes);
constexpr std::size_t signatureLength = labelLength + sizeof(PublicKey::id) + sizeof(Bytes);
static_assert(sizeof(PublicKey::bytes) == crypto_sign_PUBLICKEYBYTES);
static_assert(keyLength == 42 && signatureLength == 74);

/// The four lines, decoded; valid only while `fault` is null.
struct Parts
{
    const char* fault = nullptr;
    Label label{};
    std::array<unsigned char, sizeof(PublicKey::id)> keyId{};
    Bytes first{};
    QByteArray trustedComment;
    Bytes second{};
};

const unsigned char* unsignedBytes(const QByteArray& bytes)
{
    return reinterpret_cast<const unsigned char*>(bytes.constData());
}

/// True if the whole line is base64 of exactly `size` bytes: no blanks, no stray bits, nothing after it.
template<std::size_t size> bool decode(const QByteArray& line, std::array<unsigned char, size>& bytes)
{
    // libsodium 1.0.18 reads some bytes above 0x7F as letters.
    const bool isAscii = std::all_of(line.begin(), line.end(),
                                     [](char byte) { return static_cast<unsigned char>(byte) <= 0x7F; });
    std::size_t length = 0;
    return isAscii &&
           sodium_base642bin(bytes.data(), size, line.constData(), static_cast<std::size_t>(line.size()),
                             nullptr, &length, nullptr, sodium_base64_VARIANT_ORIGINAL) == 0 &&
           length == size;
}

/// Copies consecutive fields out of a buffer.
class Fields
{
public:
    explicit Fields(const unsigned char* bytes) : next(bytes) {}

    template<std::size_t size> void take(std::array<unsigned char, size>& field)
    {
        std::copy_n(next, size, field.begin());
        next += size;
    }

private:
    const unsigned char* next;
};

QByteArrayList linesOf(const QByteArray& file)
{
    QByteArrayList lines = file.split('\n');
    if (lines.last().isEmpty()) // after the end of the last line
        lines.removeLast();
    for (QByteArray& line : lines)
        if (line.endsWith('\r'))
            line.chop(1);
    return lines;
}

Parts takeApart(const QByteArray& file)
{
    Parts parts;
    const auto refuse = [&parts](const char* fault) {
        parts.fault = fault;
        return parts;
    };
    if (file.size() > sizeLimit)
        return refuse("the signature file is too large");
    const QByteArrayList lines = linesOf(file);
    if (lines.size() < 4)
        return refuse("the signature file has fewer than four lines");
    if (lines[0].size() > longestUntrustedComment)
        return refuse("the signature file's first line is too long");
    std::array<unsigned char, signatureLength> first{};
    if (!decode(lines[1], first))
        return refuse("the signature is not 74 bytes in base64");
    if (!lines[2].startsWith(trustedPrefix))
        return refuse("the signature file has no trusted comment");
    if (!decode(lines[3], parts.second))
        return refuse("the trusted comment's signature is not 64 bytes in base64");
    Fields fields(first.data());
    fields.take(parts.label);
    fields.take(parts.keyId);
    fields.take(parts.first);
    parts.trustedComment = lines[2].mid(static_cast<int>(qstrlen(trustedPrefix)));
    return parts;
}

bool isGood(const Bytes& signature, const QByteArray& content, const PublicKey& key)
{
    return crypto_sign_verify_detached(signature.data(), unsignedBytes(content),
                                       static_cast<unsigned long long>(content.size()),
                                       key.bytes.data()) == 0;
}

QByteArray blake2b(const QByteArray& content)
{
    std::array<unsigned char, crypto_generichash_BYTES_MAX> digest{};
    static_assert(sizeof digest == 64, "512 bits");
    crypto_generichash(digest.data(), digest.size(), unsignedBytes(content),
                       static_cast<unsigned long long>(content.size()), nullptr, 0);
    return {reinterpret_cast<const char*>(digest.data()), static_cast<int>(digest.size())};
}

} // namespace

std::optional<PublicKey> parseKey(const QByteArray& line)
{
    std::array<unsigned char, keyLength> decoded{};
    if (!decode(line, decoded))
        return std::nullopt;
    PublicKey key;
    Label label{};
    Fields fields(decoded.data());
    fields.take(label);
    fields.take(key.id);
    fields.take(key.bytes);
    return label == keyLabel ? std::optional(key) : std::nullopt;
}

const char* fault(const PublicKey& key, const QByteArray& content, const QByteArray& signatureFile)
{
    if (sodium_init() < 0) // does nothing when called again
        return "the signature cannot be checked on this computer";
    const Parts parts = takeApart(signatureFile);
    if (parts.fault != nullptr)
        return parts.fault;
    if (parts.label != digestOfFile && parts.label != wholeFile)
        return "the signature is of an unknown kind";
    if (parts.keyId != key.id)
        return "the signature was made with another key";
    // Only the label decides; a signature is never tried the other way.
    if (!isGood(parts.first, parts.label == digestOfFile ? blake2b(content) : content, key))
        return "the signature is not that of this file";
    QByteArray second(reinterpret_cast<const char*>(parts.first.data()),
                      static_cast<int>(parts.first.size()));
    second += parts.trustedComment;
    if (!isGood(parts.second, second, key))
        return "the trusted comment is not the one that was signed";
    return nullptr;
}

} // namespace signature
