#include "net/cataloguekey.h"
#include "net/signature.h"

#include <QtGlobal>

namespace {

const char* judgeByKey(const QByteArray& catalogue, const QByteArray& signatureFile)
{
    const auto key = signature::parseKey(TALVEX_CATALOGUE_KEY);
    if (!key)
        qFatal("TALVEX_CATALOGUE_KEY is no key"); // cmake/cataloguekey.cmake has checked it
    return signature::fault(*key, catalogue, signatureFile);
}

} // namespace

cataloguekey::Judge cataloguekey::judge()
{
    return judgeByKey;
}
