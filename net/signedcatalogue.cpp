#include "net/catalogue.h"
#include "net/cataloguekey.h"
#include "net/exchange.h"
#include "net/signature.h"
#include "net/updatechecker.h"

#include <QTimer>

using exchange::silenceLimitMs;

// The update check in a build with a catalogue key: the catalogue is fetched, then its signature, and nothing
// in the catalogue is used before the signature has been found good.

/// Forgets what an earlier check left behind: its request, if it is still under way, and the bytes received.
/// (Without a key, an earlier request intentionally goes on and its signals act on the current one.)
void UpdateChecker::forgetEarlierCheck()
{
    infoData.clear();
    if (reply == nullptr)
        return;
    reply->disconnect(this);
    reply->abort();
    releaseReply();
}

void UpdateChecker::askForSignature()
{
    releaseReply();
    signatureData.clear();
    timeoutTimer->start(silenceLimitMs);
    start(catalogueUrl() + ".minisig");
    connect(reply, &QNetworkReply::finished, this, &UpdateChecker::signatureFinished);
    connect(reply, &QNetworkReply::readyRead, this, &UpdateChecker::signatureArrived);
    connect(reply, &QNetworkReply::downloadProgress, this, &UpdateChecker::onDataReadProgress);
}

/// Error pages do not count.
bool UpdateChecker::isSignatureTooLarge() const
{
    return hasGoodStatus() && signatureData.size() > signature::sizeLimit;
}

/// Abandons a file that is too large to be a signature.
void UpdateChecker::signatureArrived()
{
    if (reply == nullptr)
        return;
    signatureData += takePiece();
    if (!isSignatureTooLarge()) {
        giveUpEndless();
        return;
    }
    disconnect(reply, &QNetworkReply::downloadProgress, this, nullptr); // would restart the clock
    reply->abort();
}

void UpdateChecker::signatureFinished()
{
    timeoutTimer->stop();
    if (reply == nullptr)
        return;
    if (!isSignatureTooLarge() && replyFailed()) {
        qErrnoWarning("The catalogue's signature could not be downloaded");
        reportProblem();
        return;
    }
    judgeCatalogue();
}

void UpdateChecker::judgeCatalogue()
{
    const char* const fault = cataloguekey::judge()(infoData, signatureData);
    signatureData.clear();
    if (fault != nullptr) {
        qWarning("The catalogue is not genuine: %s", fault);
        releaseReply();
        infoData.clear();
        reportNotGenuine("The update server's answer is not genuine.");
        return;
    }
    infoData = catalogue::withoutCarriageReturns(infoData);
    useCatalogue();
}
