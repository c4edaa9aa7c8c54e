#pragma once

#include "log/logdownloader.h"
#include "tests/support/filecontent.h"
#include "tests/support/programfiles.h"
#include "tests/support/scriptedunit.h"
#include "tests/support/texts.h"

#include <QDir>
#include <QSignalSpy>
#include <QTest>
#include <QThread>

#include <memory>

/// The log files in the program's directory.
inline QStringList logFiles()
{
    return QDir(QCoreApplication::applicationDirPath()).entryList({filename::anyLog});
}

/// The path of the one that has come since; empty: none has.
inline QString newLogFile(const QStringList& before)
{
    QStringList files = logFiles();
    for (const QString& name : before)
        files.removeAll(name);
    return files.size() == 1 ? besideProgram(files.first()) : QString();
}

/// A downloader on its worker thread, connected to itself the way the window connects it.
class Exchange
{
public:
    explicit Exchange(const std::shared_ptr<ScriptedUnit>& scripted, UnitType type = UNIT_HB4)
        : unit(scripted)
    {
        virtualbus::clear();
        ScriptedUnit::plugIn(unit, type);
        downloader->setDevice(unit->opened(), type);
        downloader->moveToThread(&worker);
        LogDownloader* self = downloader.get();
        QObject::connect(self, SIGNAL(needwaitLogFileMd5()), self, SLOT(waitLogFileMd5()));
        QObject::connect(self, SIGNAL(needreadLogPart()), self, SLOT(readLogPart()));
        QObject::connect(self, SIGNAL(needdataCompleted(int)), self, SLOT(dataCompleted(int)));
        QObject::connect(self, SIGNAL(needresendMessage(int)), self, SLOT(resendMessage(int)));
        worker.setStackSize(256 * 1024); // calls nested for each reply would soon overflow it
        worker.start();
    }
    ~Exchange()
    {
        virtualbus::unplug(unit->number); // wakes a blocked read
        worker.requestInterruption();
        worker.quit();
        worker.wait();
        QFile::remove(file);
    }
    Q_DISABLE_COPY_MOVE(Exchange)

    /// Asks for log 1 and waits for the end.
    void download()
    {
        downloader->startDownload(1);
        QTRY_VERIFY(!finished.isEmpty());
    }

    [[nodiscard]] QByteArray stored() const
    {
        return QFile::exists(file) ? contentOf(file) : QByteArray("no file");
    }
    /// The command byte of every written report, as in "10 30 70": request, acknowledge, resend.
    [[nodiscard]] QByteArray commands() const
    {
        QByteArray commands;
        for (const Bytes& bytes : virtualbus::writesTo(1))
            commands += static_cast<char>(bytes[1]);
        return commands.toHex(' ');
    }

    /// Blocks until the worker has handled everything queued so far.
    void awaitWorker()
    {
        QMetaObject::invokeMethod(
            downloader.get(), [] {}, Qt::BlockingQueuedConnection);
    }

    std::shared_ptr<ScriptedUnit> unit;
    const QStringList filesBefore = logFiles();
    std::unique_ptr<LogDownloader> downloader = std::make_unique<LogDownloader>(nullptr, nullptr);
    const QString file = newLogFile(filesBefore);
    QThread worker;
    QSignalSpy finished{downloader.get(), SIGNAL(logDownloadFinished())};
    QSignalSpy progress{downloader.get(), SIGNAL(logDownloadProgress(int))};
};

inline QList<int> valuesOf(const QSignalSpy& spy)
{
    QList<int> values;
    for (const auto& arguments : spy)
        values += arguments.first().toInt();
    return values;
}

inline std::shared_ptr<ScriptedUnit> unitSaying(const ScriptedUnit::Answers& script)
{
    return std::make_shared<ScriptedUnit>(script);
}

/// Replies of the log exchange.
/// @{
inline QByteArray headerReply(int parts)
{
    QByteArray reply = " " + QByteArray(32, 'd');
    for (const int shift : {24, 16, 8, 0})
        reply += static_cast<char>(parts >> shift & 0xFF);
    return reply;
}
inline QByteArray partReply(char fill)
{
    return "@" + QByteArray(63, fill);
}
inline QByteArray lastReply(int length, char fill)
{
    return "P" + QByteArray(1, static_cast<char>(length)) + QByteArray(62, fill);
}
/// @}
