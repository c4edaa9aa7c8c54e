#pragma once

#include "unit/hidhandle.h"
#include "unit/report.h"

#include <QByteArray>
#include <QDateTime>
#include <QFile>
#include <QObject>

#include <atomic>
#include <mutex>

/// Downloads the unit's log, as received, into a file beside the program. Lives on the worker thread, which
/// runs its protocol steps; the GUI thread calls setDevice, startDownload, stopTransfer and dumpFile
/// directly.
///
/// Who may touch what: until startDownload emits its signal, everything belongs to the GUI thread; from then
/// on everything belongs to the worker, except stopRequested (atomic) and logFile (under logFileLock), with
/// which the GUI thread stops a download while the worker may be writing a part.
class LogDownloader : public QObject
{
    Q_OBJECT

public:
    /// `device` is not owned, the second argument is ignored. Intentional: without a parent the object can
    /// move to its thread. Creates its output file, empty, at once. Intentional: at every start of the
    /// program. A file that exists already is never touched (logfilename.h).
    LogDownloader(hid_device* device, QObject* parent);

    /// The unit to download from; not owned.
    void setDevice(hid_device* unit, UnitType type);

signals:
    void logDownloadProgress(int progress);
    void needwaitLogFileMd5();
    void needreadLogPart();
    void needdataCompleted(int type);
    void needresendMessage(int); ///< intentional: never emitted
    void logDownloadFinished();

public slots:
    // Intentional: startDownload, dumpFile, cleanHistory, checkFile and stopTransfer are only called.
    void needreadLogPart2();
    void startDownload(int number);
    void dumpFile();
    void cleanHistory();
    void checkFile();
    void resendMessage(int);
    void dataCompleted(int type);
    void waitLogFileMd5();
    void readLogPart();
    void stopTransfer();
    void startTransfer(); ///< intentional: nothing calls it
    void process();

private:
    [[nodiscard]] bool claimFile(const QDateTime& start);
    [[nodiscard]] bool write(const report::Output& output);
    [[nodiscard]] bool readHeader();
    [[nodiscard]] bool takePart();
    void store(const QByteArray& bytes);
    void closeFile();

    hid_device* device;
    std::array<unsigned char, report::outputLength> report{}; ///< every write; reads fill its first 64 bytes
    int lastResult = 0;    ///< of the latest read or write; intentional: a member, though only used at once
    QByteArray spareBytes; ///< intentional: cleared with logMd5, never filled
    QByteArray logMd5;     ///< intentional: kept, never compared
    int partsTotal = 0;
    int partsReceived = 0;
    std::atomic<bool> stopRequested = false;
    QFile logFile;
    UnitType unitType = UNIT_HB4;
    std::mutex logFileLock; ///< not QMutex, which the thread sanitizer does not understand
};
