#include "net/catalogue.h"
#include "net/cataloguekey.h"
#include "net/exchange.h"
#include "net/updatechecker.h"
#include "update/imagestore.h"

#include <QTimer>

namespace {

constexpr auto notSaved = "Error saving firmware to disk."; ///< shown and written to the diagnostics

} // namespace

void UpdateChecker::onNeedDownloadNewFirmware()
{
    firmwareData.clear(); // of a download that did not finish
    awaitedDigest = imageDigest;
    getPlain(binUrl, SLOT(replyFinishedOnDone()), SLOT(httpReadyRead2()));
}

void UpdateChecker::httpReadyRead2()
{
    if (reply == nullptr)
        return;
    firmwareData += takePiece();
    giveUpEndless();
}

void UpdateChecker::replyFinishedOnDone()
{
    timeoutTimer->stop();
    // Only its own reply says that an image is whole: a check started meanwhile has another reply in flight.
    if (reply == nullptr || (sender() != nullptr && sender() != reply))
        return;
    if (replyFailed() || exchange::isNoImage(*reply)) {
        reportFailedDownload("UpdateChecker::onDone");
        return;
    }
    if (const char* const fault = imageFault()) {
        qWarning("%s", fault);
        releaseReply();
        firmwareData.clear();
        reportNotGenuine("The downloaded firmware is damaged or not genuine.");
        return;
    }
    downloadedImage = awaitedDigest;
    storeFirmware();
    releaseReply();
    infoData.clear();
    firmwareData.clear();
    emit newUpdateFileDownloaded(true); // intentional: also after an error, whose box ends the program
}

/// What is wrong with the received image, judged by the digest known when its download began; null: nothing.
const char* UpdateChecker::imageFault() const
{
    if (awaitedDigest.isEmpty() && !cataloguekey::isBuiltIn())
        return nullptr;
    if (!catalogue::isDigest(awaitedDigest))
        return "The catalogue's SHA-256 of the image is malformed";
    if (awaitedDigest.toLower() != catalogue::digestOf(firmwareData))
        return "The image's SHA-256 differs from the catalogue's";
    return nullptr;
}

bool UpdateChecker::mayBeSent(const QByteArray& image) const
{
    return !cataloguekey::isBuiltIn() || downloadedImage.toLower() == catalogue::digestOf(image);
}

void UpdateChecker::storeFirmware()
{
    const auto problem = [this](const char* logLine) {
        emit youHaveProblem(
            notSaved,
            QStringLiteral("Check the HD, connections between PC and the unit and to try the update again."));
        qErrnoWarning("%s", logLine);
    };
    const QString error = reply->errorString();
    const ImageStore store;
    const bool written = store.writeDownload(firmwareData);
    if (!written)
        problem(notSaved);
    // Intentional: also without a download, so that the old image is never taken for the new one.
    const bool replaced = store.replaceImage(written);
    if (written && !replaced)
        problem(notSaved);
    if (!store.hasImage()) {
        problem("Error not found update file");
        emit checkversionError(error);
    }
}
