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

/// Reports a change log that did not arrive. Intentional: the part received precedes the next one.
bool UpdateChecker::changeLogFailed(const char* logLine)
{
    timeoutTimer->stop();
    if (reply == nullptr)
        return true;
    if (!replyFailed())
        return false;
    reportFailedDownload(logLine);
    return true;
}

void UpdateChecker::downloadChangeLogDone()
{
    if (changeLogFailed("UpdateChecker::downloadChangeLogDone"))
        return;
    releaseReply();
    infoData.clear();
    emit findNewVersion(newVersion, changeLogText);
    changeLogText.clear();
}

void UpdateChecker::downloadMainChangeLogDone()
{
    if (changeLogFailed("UpdateChecker::downloadMainChangeLogDone"))
        return;
    releaseReply();
    infoData.clear();
    emit findMainNewVersion(mainVersion, changeLogText);
    changeLogText.clear();
}
