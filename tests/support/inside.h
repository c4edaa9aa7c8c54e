#pragma once

#include "unit/unittype.h"

#include <QByteArray>
#include <QDateTime>
#include <QFile>
#include <QNetworkReply>
#include <QString>

#include <hidapi.h>

#include <array>
#include <atomic>
#include <memory>

class LogDownloader;
class MainWindow;
class UpdateChecker;

/// The private state of the program's objects, for tests that start in the middle of an operation or check
/// what no control, signal, file or report shows. Only inside.cpp is compiled with access to it.
///
/// Most tests use it only through functions of TestWindow, TransferDesk and Scene that have names of their
/// own. These go to it directly:
///
///     tst_mainwindow           first values, and members that nothing reads
///     tst_updatechecker        likewise; part of an image received; a reply of the test's own
///     tst_checkupdate          what a check takes over and no signal tells
///     tst_identification,      what each object knows while a box is open; searches that Connect does not
///     tst_identificationpair   begin
///     tst_logcontrols          the flag that nothing sets; a unit, a pair, an update or a request in flight
///                              without the steps that lead there
///     tst_logfile              a start at a given moment, and the file that it claims
///     tst_installationboxes    when a dismissed box has really ended
///     tst_signedimage          what this run has downloaded
///     reliability/journey      in which phase the program is
///     fuzz/, bench/            likewise; back to the start after an input
namespace inside {

struct Window
{
    LogDownloader& logDownloader;
    std::uint8_t& currentVersion;
    QFile& updaterFile;
    QByteArray& firmwareData;
    int& transferStarted;
    int& applyingPhase;
    int& requestSent;
    int& updateSize;
    int& packetNumber;
    int& fakeProgressActive;
    hid_device*& device;
    hid_device*& secondDevice;
    std::unique_ptr<hid_device_info>& pendingDeckInfo;
    std::uint8_t& deckCount;
    bool& firstDeckSeen;
    std::array<unsigned char, 25>& reserveBlock;
    UnitType& unitType;
    std::uint8_t& headerOffset;
    std::uint8_t& payloadOffset;
    bool& logAckPending;
    bool& updateBegun;
    bool& endTold;
    int& installationBoxes;
};
[[nodiscard]] Window of(MainWindow& window);

/// Handles a record as the search does. Returns 0 if the unit was opened and 1 if it was not; -1: neither.
[[nodiscard]] int findDevice(MainWindow& window, hid_device_info* record);

struct Checker
{
    QString& mainVersion;
    QString& mainBinUrl;
    QString& mainChangeLogUrl;
    QString& newVersion;
    QString& changeLogUrl;
    QString& binUrl;
    QNetworkReply*& reply;
    UnitType& unitType;
    unsigned char& curVersionByte;
    QString& curVersion;
    QByteArray& infoData;
    QByteArray& firmwareData;
    QString& changeLogText;
    qint64& received;
    QString& imageDigest;
    QString& downloadedImage;
};
[[nodiscard]] Checker of(UpdateChecker& checker);

struct Downloader
{
    hid_device*& device;
    int& lastResult;
    QByteArray& logMd5;
    int& partsTotal;
    int& partsReceived;
    std::atomic<bool>& stopRequested;
    QFile& logFile;
    UnitType& unitType;
};
[[nodiscard]] Downloader of(LogDownloader& downloader);

/// Claims a log file as the program does when started at this time. False if no file name was free.
[[nodiscard]] bool claimFile(LogDownloader& downloader, const QDateTime& start);

} // namespace inside
