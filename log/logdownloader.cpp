#include "log/logdownloader.h"

#include "base/percent.h"
#include "log/logfilename.h"
#include "log/logprotocol.h"
#include "unit/hidio.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QThread>
#include <QTimer>

#include <cerrno>

namespace {

constexpr int partReadMs = 100;
constexpr int nextPartMs = 1;    ///< the timer between two parts unwinds the stack
constexpr int failedReadMs = 10; ///< pause after a failed read: a vanished unit must use no CPU

/// What follows an acknowledgement or a resend request.
enum Next { readPart = 0, nothing = 1, waitForHeader = 2 };
enum AfterResend { headerAgain = 0, partAgain = 1 };

bool isProgramEnding()
{
    return QThread::currentThread()->isInterruptionRequested();
}

} // namespace

LogDownloader::LogDownloader(hid_device* unit, QObject* /*parent*/) : device(unit)
{
    if (!claimFile(QDateTime::currentDateTime()))
        qErrnoWarning("LogDownloader::LogDownloader");
}

/// Opens a file that did not exist: another instance may have started in the same second, or the clock may
/// have been set back, and a log downloaded then must stay. False if no name is available.
bool LogDownloader::claimFile(const QDateTime& start)
{
    const QString folder = QCoreApplication::applicationDirPath() + "/";
    for (int attempt = 1; attempt <= logfilename::mostAttempts; ++attempt) {
        const QString name = folder + logfilename::at(start, attempt);
        logFile.setFileName(name);
        if (QFile(name).open(QIODevice::WriteOnly | QIODevice::NewOnly))
            return logFile.open(QIODevice::WriteOnly | QIODevice::Truncate); // ours from now on
        const int reason = errno;
        const QFileInfo taken(name);
        const bool isFree = !taken.exists() && !taken.isSymLink();
        errno = reason; // for the caller: looking for the file has set it, too
        if (isFree)
            return false; // the folder cannot be written, whatever the name
    }
    return false;
}

void LogDownloader::setDevice(hid_device* unit, UnitType type)
{
    device = unit;
    unitType = type;
}

bool LogDownloader::write(const report::Output& output)
{
    report = output;
    lastResult = hidio::write(device, report.data());
    return lastResult != hidio::failed;
}

/// Intentional: a request that cannot be written ends silently, as does an acknowledge below.
void LogDownloader::startDownload(int number)
{
    if (write(logprotocol::buildRequest(unitType, number)))
        emit needwaitLogFileMd5();
}

void LogDownloader::waitLogFileMd5()
{
    if (!readHeader())
        return;
    if (logprotocol::replyCode(report.data()) == logprotocol::noLog) {
        dumpFile();
        return;
    }
    logMd5 += logprotocol::headerDigest(report.data());
    partsTotal = logprotocol::headerParts(report.data());
    emit needdataCompleted(readPart);
}

/// Reads until a header or the reply that there is no log. Intentional: without a limit. False: the program
/// is ending.
bool LogDownloader::readHeader()
{
    while (!isProgramEnding()) {
        lastResult = hidio::readBlocking(device, report.data());
        if (lastResult < 0)
            QThread::msleep(failedReadMs);
        else if (lastResult > 0 && logprotocol::endsHeaderWait(report.data()))
            return true;
    }
    return false;
}

/// Intentional: nothing asks to wait for a header.
void LogDownloader::dataCompleted(int type)
{
    if (!write(logprotocol::buildAcknowledge()))
        return;
    if (type == readPart)
        QTimer::singleShot(nextPartMs, this, SLOT(needreadLogPart2()));
    else if (type == waitForHeader)
        emit needwaitLogFileMd5();
}

void LogDownloader::needreadLogPart2()
{
    emit needreadLogPart();
}

/// Reads one part. Any other reply is answered with a request to resend, in a loop: nested calls would
/// overflow the stack. Intentional: there is no limit to the requests. Intentional: a read that brings
/// nothing leaves the download standing, without a message.
void LogDownloader::readLogPart()
{
    while (!stopRequested && !isProgramEnding()) {
        lastResult = hidio::read(device, report.data(), partReadMs);
        if (lastResult <= 0 || takePart() || !write(logprotocol::buildResend()))
            return;
    }
}

/// Takes the part in the buffer and starts the next step. False if the reply is not a part.
bool LogDownloader::takePart()
{
    switch (logprotocol::replyCode(report.data())) {
    case logprotocol::dataPart:
        ++partsReceived;
        store(logprotocol::dataPartBytes(report.data()));
        if (partsTotal != 0)
            emit logDownloadProgress(percent(partsReceived, partsTotal)); // intentional: also beyond 100
        emit needdataCompleted(readPart);
        return true;
    case logprotocol::lastPart: // intentional: without progress
        ++partsReceived;
        store(logprotocol::lastPartBytes(report.data()));
        checkFile();
        return true;
    default:
        return false;
    }
}

/// Ends the download by the count of parts; no digest is computed. Intentional: after a wrong count the unit
/// is asked to start over, its new header is awaited and acknowledged, and the download ends anyway.
void LogDownloader::checkFile()
{
    if (partsReceived != partsTotal) {
        cleanHistory();
        startDownload(logprotocol::requestNumber);
    }
    emit needdataCompleted(nothing);
    dumpFile();
}

void LogDownloader::resendMessage(int next)
{
    if (!write(logprotocol::buildResend()))
        return;
    if (next == partAgain)
        emit needreadLogPart();
    else if (next == headerAgain)
        emit needwaitLogFileMd5();
}

/// A stop may have closed the file; what arrives then is dropped. Each part is flushed at once, so that what
/// has been received survives any end of the program.
void LogDownloader::store(const QByteArray& bytes)
{
    const std::lock_guard locker(logFileLock);
    if (logFile.isOpen() && (logFile.write(bytes) != bytes.size() || !logFile.flush()))
        qErrnoWarning("LogDownloader::readLogPart");
}

void LogDownloader::closeFile()
{
    const std::lock_guard locker(logFileLock);
    logFile.close();
}

void LogDownloader::dumpFile()
{
    closeFile();
    emit logDownloadFinished();
}

void LogDownloader::stopTransfer()
{
    stopRequested = true;
    dumpFile();
}

void LogDownloader::startTransfer()
{
    stopRequested = false;
}

void LogDownloader::cleanHistory()
{
    partsTotal = 0;
    partsReceived = 0;
    logMd5.clear();
    spareBytes.clear();
}

void LogDownloader::process()
{
    // Intentional: empty, the worker thread only serves queued calls and timers.
}
