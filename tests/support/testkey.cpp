#include "tests/support/testkey.h"

#include "net/cataloguekey.h"
#include "net/signature.h"

namespace {

signature::PublicKey current;

const char* judgeByCurrent(const QByteArray& catalogue, const QByteArray& signatureFile)
{
    return signature::fault(current, catalogue, signatureFile);
}

} // namespace

void testkey::set(const QByteArray& publicKey)
{
    current = signature::parseKey(publicKey).value();
}

/// The linker prefers this to the one in the program's library.
cataloguekey::Judge cataloguekey::judge()
{
    return judgeByCurrent;
}
