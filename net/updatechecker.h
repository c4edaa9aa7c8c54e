#pragma once

#include "unit/unittype.h"

#include <QByteArray>
#include <QList>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QObject>
#include <QSslError>
#include <QString>

class QAuthenticator;
class QTimer;
namespace catalogue {
struct Offer;
}

/// The only HTTP client: the version catalogue, change logs and firmware images, one request at a time.
/// Lives on the GUI thread. Every problem is signalled by youHaveProblem; the details are in the diagnostics.
class UpdateChecker : public QObject
{
    Q_OBJECT

public:
    explicit UpdateChecker(QObject* parent = nullptr);

    /// Uses the service file beside the program if there is one; otherwise requests the catalogue.
    void checkUpdate();

    void setUnitType(UnitType type);
    void setCurVersion(unsigned char version);
    void setCurVersion(const QString& version); ///< decimal text; this form is compared

    void downloadError();

    /// Whether an image read from disk may be sent to a unit: with a catalogue key, only the one this run has
    /// downloaded; without one, any.
    [[nodiscard]] bool mayBeSent(const QByteArray& image) const;

    /// True while waiting for an answer.
    [[nodiscard]] bool isBusy() const;

    /// For the program's end: stops the thread of Qt's HTTP client, and with it every request; nothing more
    /// is signalled. Usually returns at once, and within 5 s. GUI thread, after the event loop has ended.
    void endNetwork();

signals:
    void findMainNewVersion(QString newVersion, QString changeLog);
    void findNewVersion(QString newVersion, QString changeLog);
    void youHaveLastVersion();
    void checkversionError(QString error);
    void downloadProgress(int percent);
    void newUpdateFileDownloaded(bool);
    void youHaveProblem(QString, QString);
    void changeUpdateFileName(QString);
    void startDownloadMainUpdate();

public slots:
    void onNeedDownloadNewFirmware();
    void onNeedDownloadNewMainFirmware();
    void downloadChangeLog(); // intentional: this slot and the next one are only called
    void downloadMainChangeLog();
    void exitSlot();
    void onDataReadProgress(qint64 done, qint64 total);
    void replyFinished();
    void httpReadyRead();
    void httpReadyRead2();
    void httpReadyRead3();
    void replyFinishedOnDone();
    void downloadChangeLogDone();
    void downloadMainChangeLogDone();
    void sslErrors(QNetworkReply*, QList<QSslError> errors);
    void slotAuthenticationRequired(QNetworkReply*, QAuthenticator*);

private:
    static const QString& catalogueUrl();

    void start(const QString& url);
    void get(const QString& url, const char* finishedSlot, const char* readyReadSlot);
    void getPlain(QString& address, const char* finishedSlot, const char* readyReadSlot);
    [[nodiscard]] bool hasGoodStatus() const;
    [[nodiscard]] bool replyFailed() const;
    [[nodiscard]] QByteArray takePiece();
    void giveUpEndless();
    void releaseReply();
    void reportProblem();
    void reportNotGenuine(const char* line);
    void reportFailedDownload(const char* logLine);
    void useCatalogue();
    void act(const catalogue::Offer& offer);
    [[nodiscard]] const char* imageFault() const;
    void storeFirmware();
    [[nodiscard]] bool hasChangeLog(const char* logLine);

    // net/signedcatalogue.cpp: in a build with a catalogue key
    void forgetEarlierCheck();
    [[nodiscard]] bool isSignatureTooLarge() const;
    void askForSignature();
    void signatureArrived();
    void signatureFinished();
    void judgeCatalogue();

    QTimer* timeoutTimer;
    QString mainVersion;
    QString mainBinUrl;
    QString mainChangeLogUrl;
    QString newVersion;
    QString changeLogUrl;
    QString binUrl;
    QNetworkAccessManager networkManager;
    QNetworkReply* reply = nullptr; ///< owned by networkManager
    UnitType unitType = UNIT_HB4;
    unsigned char curVersionByte = 0; ///< intentional: never read
    QString curVersion;
    QByteArray infoData;
    QByteArray firmwareData;
    QString changeLogText;
    qint64 received = 0; ///< bytes of the answer to the request in flight
    QByteArray signatureData;
    QString imageDigest;     ///< of the image at binUrl, as the catalogue tells it; empty: it tells none
    QString awaitedDigest;   ///< the same, of the image being downloaded
    QString downloadedImage; ///< the digest of the image that this run has stored; empty: none so far
};
