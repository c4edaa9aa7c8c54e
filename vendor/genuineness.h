#pragma once

#include "net/signature.h"
#include "vendor/finding.h"

#include <optional>

/// How a program built with a key judges a catalogue's signature; without a key none is required.
struct Genuineness
{
    bool isRequired = false;
    bool hasSignature = false;
    const char* fault = nullptr; ///< what is wrong with the signature

    [[nodiscard]] bool isGood() const { return hasSignature && fault == nullptr; }
};

/// `served` is the catalogue as it is served, `signatureFile` the file beside it, if any.
[[nodiscard]] Genuineness judged(const signature::PublicKey& key, const QByteArray& served,
                                 const std::optional<QByteArray>& signatureFile);

namespace checks {

[[nodiscard]] Findings ofSignature(const Genuineness& genuineness);

} // namespace checks
