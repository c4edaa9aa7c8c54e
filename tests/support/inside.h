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

/// What the program's objects keep to themselves: for a test that begins in the midst of something, or looks
/// at what no control, signal, file or wire shows. Only inside.cpp is built to see it.
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

/// What the search does with a record: the result as it was, or 0 for a unit that is open, 1 for one that is
/// not.
void findDevice(MainWindow& window, hid_device_info* record, int& result);

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

/// As a start of the program at this moment does. False: no name was free.
[[nodiscard]] bool claimFile(LogDownloader& downloader, const QDateTime& start);

} // namespace inside
