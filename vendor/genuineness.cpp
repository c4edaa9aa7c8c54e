#include "vendor/genuineness.h"

Genuineness judged(const signature::PublicKey& key, const QByteArray& served,
                   const std::optional<QByteArray>& signatureFile)
{
    if (!signatureFile)
        return {true, false, nullptr};
    return {true, true, signature::fault(key, served, *signatureFile)};
}

Findings checks::ofSignature(const Genuineness& genuineness)
{
    if (!genuineness.isRequired || genuineness.isGood())
        return {};
    if (!genuineness.hasSignature)
        return {{Severity::error, "no-signature", 0, {}, "there is no signature beside it"}};
    return {{Severity::error, "bad-signature", 0, {}, QString("not genuine: ") + genuineness.fault}};
}
