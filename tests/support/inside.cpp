#include "tests/support/inside.h"

#include "log/logdownloader.h"
#include "net/updatechecker.h"
#include "ui/mainwindow.h"

namespace inside {

Window of(MainWindow& window)
{
    return {*window.logDownloader,   window.currentVersion,
            window.updaterFile,      window.firmwareData,
            window.transferStarted,  window.applyingPhase,
            window.requestSent,      window.updateSize,
            window.packetNumber,     window.fakeProgressActive,
            window.device,           window.secondDevice,
            window.pendingDeckInfo,  window.deckCount,
            window.firstDeckSeen,    window.reserveBlock,
            window.unitType,         window.headerOffset,
            window.payloadOffset,    window.logAckPending,
            window.updateBegun,      window.endTold,
            window.installationBoxes};
}

int findDevice(MainWindow& window, hid_device_info* record)
{
    int result = -1;
    window.findDevice(record, result);
    return result;
}

Checker of(UpdateChecker& checker)
{
    return {checker.mainVersion,    checker.mainBinUrl,   checker.mainChangeLogUrl,
            checker.newVersion,     checker.changeLogUrl, checker.binUrl,
            checker.reply,          checker.unitType,     checker.curVersionByte,
            checker.curVersion,     checker.infoData,     checker.firmwareData,
            checker.changeLogText,  checker.received,     checker.imageDigest,
            checker.downloadedImage};
}

Downloader of(LogDownloader& downloader)
{
    return {downloader.device,        downloader.lastResult,    downloader.logMd5,  downloader.partsTotal,
            downloader.partsReceived, downloader.stopRequested, downloader.logFile, downloader.unitType};
}

bool claimFile(LogDownloader& downloader, const QDateTime& start)
{
    return downloader.claimFile(start);
}

} // namespace inside
