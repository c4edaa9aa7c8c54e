#pragma once

#include "log/logdownloader.h"
#include "tests/log/replyingunit.h"

#include <QSignalSpy>
#include <QThread>

#include <hidapi.h>

#include <memory>

/// A downloader on its worker thread, connected to itself as the window does it.
class Exchange
{
public:
    explicit Exchange(const std::shared_ptr<ReplyingUnit>& scripted, UnitType type = UNIT_HB4)
        : unit(scripted)
    {
        virtualbus::clear();
        virtualbus::DeviceRecord record;
        record.productId = unitModels[type].productId;
        record.product = "HB4";
        number = virtualbus::attach(record, unit);
        hid_device_info* list = hid_enumerate(unitVendorId, record.productId);
        handle = hid_open_path(list->path);
        hid_free_enumeration(list);
        downloader->setDevice(handle, type);
        downloader->moveToThread(&worker);
        LogDownloader* self = downloader.get();
        QObject::connect(self, SIGNAL(needwaitLogFileMd5()), self, SLOT(waitLogFileMd5()));
        QObject::connect(self, SIGNAL(needreadLogPart()), self, SLOT(readLogPart()));
        QObject::connect(self, SIGNAL(needdataCompleted(int)), self, SLOT(dataCompleted(int)));
        QObject::connect(self, SIGNAL(needresendMessage(int)), self, SLOT(resendMessage(int)));
        worker.setStackSize(256 * 1024); // a call nested for each reply would end here soon
        worker.start();
    }
    ~Exchange()
    {
        virtualbus::unplug(number); // wakes a blocked read
        worker.requestInterruption();
        worker.quit();
        worker.wait();
        QFile::remove(fileName());
    }
    Q_DISABLE_COPY_MOVE(Exchange)

    [[nodiscard]] QString fileName() const { return downloader->logFile.fileName(); }
    [[nodiscard]] QByteArray stored() const
    {
        QFile file(fileName());
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("no file");
    }
    /// The first bytes of every written report: "10" request, "30" acknowledge, "70" resend.
    [[nodiscard]] QByteArrayList commands() const
    {
        QByteArrayList commands;
        for (const auto& bytes : virtualbus::writesTo(1))
            commands +=
                QByteArray(reinterpret_cast<const char*>(bytes.data()), int(bytes.size())).mid(1, 1).toHex();
        return commands;
    }

    /// Until the worker has done all that it was asked for until now.
    void awaitWorker()
    {
        QMetaObject::invokeMethod(
            downloader.get(), [] {}, Qt::BlockingQueuedConnection);
    }

    std::shared_ptr<ReplyingUnit> unit;
    std::unique_ptr<LogDownloader> downloader = std::make_unique<LogDownloader>(nullptr, nullptr);
    QThread worker;
    hid_device* handle = nullptr;
    int number = 0;
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

inline std::shared_ptr<ReplyingUnit> unitSaying(const std::vector<ReplyingUnit::Replies>& script)
{
    return std::make_shared<ReplyingUnit>(script);
}
