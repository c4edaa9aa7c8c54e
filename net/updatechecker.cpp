#include "net/updatechecker.h"

#include "base/percent.h"
#include "base/sizelimit.h"
#include "net/catalogue.h"
#include "net/cataloguekey.h"
#include "net/exchange.h"
#include "net/plainaddress.h"

#include <QCoreApplication>
#include <QFile>
#include <QTimer>

#ifndef TALVEX_UPDATE_HOST
#error "TALVEX_UPDATE_HOST names the vendor's update server"
#endif

using exchange::silenceLimitMs;

UpdateChecker::UpdateChecker(QObject* parent)
    : QObject(parent), timeoutTimer(new QTimer(this)), mainBinUrl(QStringLiteral("http://upd.test"))
{
    // Intentional: mainBinUrl holds a placeholder until the first catalogue replaces it.
    // Intentional: the type is registered, although its only connection is direct and does not need that.
    qRegisterMetaType<QList<QSslError>>("QList<QSslError>");
    networkManager.setRedirectPolicy(QNetworkRequest::NoLessSafeRedirectPolicy);
    // clang-format off
    connect(timeoutTimer, SIGNAL(timeout()), this, SLOT(exitSlot()));
    connect(&networkManager, SIGNAL(authenticationRequired(QNetworkReply*,QAuthenticator*)),
            this, SLOT(slotAuthenticationRequired(QNetworkReply*,QAuthenticator*)));
    connect(&networkManager, SIGNAL(sslErrors(QNetworkReply*,QList<QSslError>)),
            this, SLOT(sslErrors(QNetworkReply*,QList<QSslError>)));
    // clang-format on
}

void UpdateChecker::setUnitType(UnitType type)
{
    unitType = type;
}

void UpdateChecker::setCurVersion(unsigned char version)
{
    curVersionByte = version;
}

void UpdateChecker::setCurVersion(const QString& version)
{
    curVersion = version;
}

bool UpdateChecker::isBusy() const
{
    return reply != nullptr && reply->isRunning();
}

void UpdateChecker::endNetwork()
{
    networkManager.clearConnectionCache(); // ends the thread without emitting anything
}

void UpdateChecker::checkUpdate()
{
    // Intentional: a file placed by hand, for service, takes precedence over any catalogue.
    const QString serviceFile = QCoreApplication::applicationDirPath() + "/SUPER_MEGA_UPDATE.sb";
    if (QFile::exists(serviceFile)) {
        emit changeUpdateFileName(serviceFile);
        emit newUpdateFileDownloaded(true);
        return;
    }
    // Intentional: infoData is not cleared; what a failed check left behind precedes the new lines. With a
    // key, only what the signature covers may be there.
    if (cataloguekey::isBuiltIn())
        forgetEarlierCheck();
    get(catalogueUrl(), SLOT(replyFinished()), SLOT(httpReadyRead()));
    timeoutTimer->start(silenceLimitMs);
}

const QString& UpdateChecker::catalogueUrl()
{
    static const QString url =
        QStringLiteral("http://" TALVEX_UPDATE_HOST "/wp-content/uploads/versions.txt");
    return url;
}

void UpdateChecker::start(const QString& url)
{
    received = 0;
    reply = networkManager.get(exchange::requestFor(url));
}

void UpdateChecker::get(const QString& url, const char* finishedSlot, const char* readyReadSlot)
{
    start(url);
    connect(reply, SIGNAL(finished()), this, finishedSlot);
    connect(reply, SIGNAL(readyRead()), this, readyReadSlot);
    // clang-format off
    connect(reply, SIGNAL(downloadProgress(qint64,qint64)), this, SLOT(onDataReadProgress(qint64,qint64)));
    // clang-format on
}

void UpdateChecker::getPlain(QString& address, const char* finishedSlot, const char* readyReadSlot)
{
    const auto parts = takeApart(address);
    if (!parts) {
        downloadError();
        return;
    }
    address = parts->path; // intentional: the member keeps only its path, a second use of it fails
    timeoutTimer->start(silenceLimitMs);
    get(parts->url(), finishedSlot, readyReadSlot);
}

void UpdateChecker::httpReadyRead()
{
    if (reply == nullptr)
        return;
    const QByteArray piece = takePiece();
    // The signature covers the file as it was sent.
    infoData += cataloguekey::isBuiltIn() ? piece : catalogue::withoutCarriageReturns(piece);
    giveUpEndless();
}

/// Reads what has arrived, whether or not it is kept later.
QByteArray UpdateChecker::takePiece()
{
    QByteArray piece = reply->readAll();
    received += piece.size();
    return piece;
}

/// Abandons the request, as a network error, once more than `sizeLimit` bytes have arrived.
void UpdateChecker::giveUpEndless()
{
    if (received <= sizeLimit)
        return;
    // Another progress report would restart the clock.
    // clang-format off
    disconnect(reply, SIGNAL(downloadProgress(qint64,qint64)), this, nullptr);
    // clang-format on
    reply->abort();
}

bool UpdateChecker::hasGoodStatus() const
{
    return exchange::hasGoodStatus(*reply);
}

bool UpdateChecker::replyFailed() const
{
    return !exchange::isAnswer(*reply);
}

void UpdateChecker::releaseReply()
{
    if (reply != nullptr)
        reply->deleteLater();
    reply = nullptr;
}

/// Intentional: what is shown is not translated, here as in the other problems.
void UpdateChecker::reportProblem()
{
    emit youHaveProblem(QStringLiteral("Problem with internet connection"), QStringLiteral(""));
}

/// Reports an answer that is damaged or forged; the user is shown `line`.
void UpdateChecker::reportNotGenuine(const char* line)
{
    emit youHaveProblem(
        line, QStringLiteral("Nothing was changed on your unit. Try again later or in another network."));
}

/// Reports a change log or an image that did not arrive.
void UpdateChecker::reportFailedDownload(const char* logLine)
{
    const QString error = reply->errorString(); // read now, as a box may stay open for long
    qErrnoWarning("%s", logLine);
    reportProblem();
    qErrnoWarning("Error by download update file");
    emit checkversionError(error); // intentional: nothing is connected to it
}

/// Intentional: without a key, acts on the reply in flight, whichever request has been completed.
void UpdateChecker::replyFinished()
{
    timeoutTimer->stop();
    if (reply == nullptr)
        return;
    if (replyFailed()) {
        qErrnoWarning("Error by download info file");
        reportProblem();
        return;
    }
    if (cataloguekey::isBuiltIn())
        askForSignature();
    else
        useCatalogue();
}

/// Acts on the catalogue in infoData, from which carriage returns have been removed.
void UpdateChecker::useCatalogue()
{
    // Parsed before anything is reported: while a box is open, another check may refill infoData.
    const catalogue::Offer offer =
        catalogue::lookUp(catalogue::parse(infoData), catalogue::keyStem(unitType));
    if (infoData.size() > catalogue::reportedSize)
        exitSlot(); // intentional: only a warning, the catalogue is still used
    if (findUnitModel(unitType) == nullptr)
        qErrnoWarning("Can't recog unitType %d", static_cast<int>(unitType));
    act(offer);
}

/// Stores what the catalogue says about the unit's model, intentionally also if something is missing, and
/// acts on it. Intentional: infoData is kept if it leads to a newer updater.
void UpdateChecker::act(const catalogue::Offer& offer)
{
    newVersion = offer.newVersion;
    binUrl = offer.binUrl;
    changeLogUrl = offer.changeLogUrl;
    mainVersion = offer.mainVersion;
    mainChangeLogUrl = offer.mainChangeLogUrl;
    mainBinUrl = offer.mainBinUrl;
    imageDigest = offer.imageDigest;

    const catalogue::Decision decision = catalogue::decide(offer, curVersion, cataloguekey::isBuiltIn());
    if (decision == catalogue::Decision::incomplete) {
        if (cataloguekey::isBuiltIn() && !catalogue::isDigest(imageDigest))
            qWarning("The catalogue gives no SHA-256 of the image");
        qErrnoWarning("Can't find info about version and binary file");
        reportProblem();
        return;
    }
    if (decision == catalogue::Decision::newerUpdater) {
        downloadMainChangeLog();
        return;
    }
    releaseReply();
    infoData.clear();
    if (decision == catalogue::Decision::newerFirmware)
        downloadChangeLog();
    else
        emit youHaveLastVersion();
}

void UpdateChecker::onDataReadProgress(qint64 done, qint64 total)
{
    timeoutTimer->stop();
    timeoutTimer->start(silenceLimitMs); // the limit is on silence, not on the whole answer
    if (total >= exchange::reportedTotal)
        downloadError();                                           // intentional: the request goes on
    emit downloadProgress(total > 0 ? percent(done, total) : 100); // intentional: an unknown total is 100
}

/// Intentional: neither aborts the request nor stops the clock; a silent server is reported every 30 s.
void UpdateChecker::exitSlot()
{
    qErrnoWarning("UpdateChecker::exitSlot");
    reportProblem();
}

void UpdateChecker::downloadError()
{
    qErrnoWarning("UpdateChecker::downloadError");
    exitSlot();
}

void UpdateChecker::sslErrors(QNetworkReply* /*failing*/, QList<QSslError> /*errors*/)
{
    if (reply != nullptr)
        reply->ignoreSslErrors(); // intentional: the reply in flight, whichever failed
}

void UpdateChecker::slotAuthenticationRequired(QNetworkReply* /*asking*/, QAuthenticator* /*authenticator*/)
{
    // Intentional: no credentials are given, the request fails with the server's answer.
}
