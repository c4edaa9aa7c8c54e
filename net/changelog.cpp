#include "net/updatechecker.h"

#include <QTimer>

void UpdateChecker::downloadChangeLog()
{
    getPlain(changeLogUrl, SLOT(downloadChangeLogDone()), SLOT(httpReadyRead3()));
}

void UpdateChecker::downloadMainChangeLog()
{
    getPlain(mainChangeLogUrl, SLOT(downloadMainChangeLogDone()), SLOT(httpReadyRead3()));
}

void UpdateChecker::httpReadyRead3()
{
    if (reply == nullptr)
        return;
    // Intentional: each piece is decoded separately, up to its first NUL byte, including carriage returns.
    changeLogText += QString::fromUtf8(takePiece().constData());
    giveUpEndless();
}

/// Ends the request. True if the change log arrived. A request that failed is reported as `logLine`; without
/// a reply there is nothing to report. Intentional: what a failed request received precedes the next change
/// log.
bool UpdateChecker::hasChangeLog(const char* logLine)
{
    timeoutTimer->stop();
    if (reply == nullptr)
        return false;
    if (replyFailed()) {
        reportFailedDownload(logLine);
        return false;
    }
    releaseReply();
    infoData.clear();
    return true;
}

void UpdateChecker::downloadChangeLogDone()
{
    if (!hasChangeLog("UpdateChecker::downloadChangeLogDone"))
        return;
    emit findNewVersion(newVersion, changeLogText);
    changeLogText.clear();
}

void UpdateChecker::downloadMainChangeLogDone()
{
    if (!hasChangeLog("UpdateChecker::downloadMainChangeLogDone"))
        return;
    emit findMainNewVersion(mainVersion, changeLogText);
    changeLogText.clear();
}
