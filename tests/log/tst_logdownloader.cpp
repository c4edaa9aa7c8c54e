#include "log/logdownloader.h"
#include "tests/log/replyingunit.h"

#include <QMetaMethod>
#include <QSignalSpy>
#include <QThread>
#include <QtTest>

#include <hidapi.h>

#include <ctime>
#include <memory>

namespace {

constexpr int settleMs = 250; // more than the 100 ms that a part is waited for

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
            commands += QByteArray(reinterpret_cast<const char*>(bytes.data()), int(bytes.size())).mid(1, 1).toHex();
        return commands;
    }

    std::shared_ptr<ReplyingUnit> unit;
    std::unique_ptr<LogDownloader> downloader = std::make_unique<LogDownloader>(nullptr, nullptr);
    QThread worker;
    hid_device* handle = nullptr;
    int number = 0;
    QSignalSpy finished{downloader.get(), SIGNAL(logDownloadFinished())};
    QSignalSpy progress{downloader.get(), SIGNAL(logDownloadProgress(int))};
};

QList<int> valuesOf(const QSignalSpy& spy)
{
    QList<int> values;
    for (const auto& arguments : spy)
        values += arguments.first().toInt();
    return values;
}

std::shared_ptr<ReplyingUnit> unitSaying(const std::vector<ReplyingUnit::Replies>& script)
{
    return std::make_shared<ReplyingUnit>(script);
}

} // namespace

class TestLogDownloader : public QObject
{
    Q_OBJECT

private slots:
    void metaObject()
    {
        const QByteArrayList expected{
            "logDownloadProgress(int)", "needwaitLogFileMd5()", "needreadLogPart()", "needdataCompleted(int)",
            "needresendMessage(int)", "logDownloadFinished()", "needreadLogPart2()", "startDownload(int)",
            "dumpFile()", "cleanHistory()", "checkFile()", "resendMessage(int)", "dataCompleted(int)",
            "waitLogFileMd5()", "readLogPart()", "stopTransfer()", "startTransfer()", "process()"};
        const QMetaObject& meta = LogDownloader::staticMetaObject;
        QByteArrayList methods;
        for (int i = meta.methodOffset(); i < meta.methodCount(); ++i)
            methods += meta.method(i).methodSignature();
        QCOMPARE(methods, expected);
    }

    void anEmptyFileIsCreatedAtOnce()
    {
        QObject parent;
        const LogDownloader downloader(nullptr, &parent);
        const QString name = downloader.logFile.fileName();
        QCOMPARE(downloader.parent(), nullptr);
        QVERIFY(downloader.logFile.isOpen());
        QCOMPARE(int(downloader.logFile.openMode()), 10);
        QCOMPARE(QFileInfo(name).size(), 0);
        QCOMPARE(QFileInfo(name).path(), QCoreApplication::applicationDirPath());
        const QRegularExpression format(R"(^\d{4}-\d\d-\d\d_\d\d_\d\d_\d\d_log\.enc$)");
        QVERIFY2(format.match(QFileInfo(name).fileName()).hasMatch(), qPrintable(name));
        QCOMPARE(downloader.partsTotal, 0);
        QCOMPARE(downloader.partsReceived, 0);
        QVERIFY(!downloader.stopRequested);
        QFile::remove(name);
    }

    void requestGoesToTheModelsPlace_data()
    {
        QTest::addColumn<int>("type");
        QTest::addColumn<int>("index");
        QTest::newRow("LMB-2") << int(UNIT_LMB2) << 1;
        QTest::newRow("PLT65") << int(UNIT_PLT65) << 61;
    }
    void requestGoesToTheModelsPlace()
    {
        QFETCH(const int, type);
        QFETCH(const int, index);
        Exchange exchange(unitSaying({{"`"}}), static_cast<UnitType>(type));
        exchange.downloader->startDownload(1);
        QTRY_COMPARE(exchange.finished.size(), 1);
        std::vector<std::uint8_t> expected(65, 0);
        expected[static_cast<std::size_t>(index)] = 0x10;
        expected[static_cast<std::size_t>(index) + 1] = 1;
        QCOMPARE(virtualbus::writesTo(1), std::vector<std::vector<std::uint8_t>>({expected}));
    }

    void noLogEndsAtOnceWithAnEmptyFile()
    {
        Exchange exchange(unitSaying({{"`"}}));
        exchange.downloader->startDownload(1);
        QTRY_COMPARE(exchange.finished.size(), 1);
        QVERIFY(!exchange.downloader->logFile.isOpen());
        QCOMPARE(exchange.stored(), QByteArray());
        QCOMPARE(exchange.commands(), QByteArrayList({"10"}));
    }

    void threePartsOf136Bytes()
    {
        Exchange exchange(unitSaying({{headerReply(3)}, {partReply('a')}, {partReply('b')}, {lastReply(10, 'c')}}));
        exchange.downloader->startDownload(1);
        QTRY_COMPARE(exchange.finished.size(), 1);
        QCOMPARE(exchange.stored(), QByteArray(63, 'a') + QByteArray(63, 'b') + QByteArray(10, 'c'));
        QCOMPARE(valuesOf(exchange.progress), QList<int>({33, 66}));
        QCOMPARE(exchange.commands(), QByteArrayList({"10", "30", "30", "30", "30"}));
        QCOMPARE(exchange.downloader->logMd5, QByteArray(32, 'd'));
    }

    void anExactMultipleEndsWithAnEmptyLastPart()
    {
        Exchange exchange(unitSaying({{headerReply(2)}, {partReply('a')}, {lastReply(0, 'x')}}));
        exchange.downloader->startDownload(1);
        QTRY_COMPARE(exchange.finished.size(), 1);
        QCOMPARE(exchange.stored(), QByteArray(63, 'a'));
    }

    void aWrongCountAsksAgainAndEndsAllTheSame()
    {
        Exchange exchange(unitSaying({{headerReply(2)},
                                      {partReply('a')},
                                      {partReply('b')},
                                      {partReply('c')},
                                      {lastReply(1, 'd')}, // after the third part's acknowledge
                                      {headerReply(4)}})); // after the new request
        exchange.downloader->startDownload(1);
        QTRY_COMPARE(exchange.finished.size(), 1);
        QCOMPARE(valuesOf(exchange.progress), QList<int>({50, 100, 150}));
        // request; header and three parts acknowledged; new request; its header acknowledged; the end acknowledged
        QCOMPARE(exchange.commands(), QByteArrayList({"10", "30", "30", "30", "30", "10", "30", "30"}));
        QCOMPARE(exchange.stored().size(), 3 * 63 + 1);
        QCOMPARE(exchange.downloader->partsTotal, 4);
        QCOMPARE(exchange.downloader->partsReceived, 0);
    }

    void partsAfterTheEndAreNotStored()
    {
        Exchange exchange(unitSaying({{headerReply(9)}, {lastReply(1, 'd')}, {headerReply(4)}, {}, {partReply('x')}}));
        exchange.downloader->startDownload(1);
        QTRY_COMPARE(exchange.finished.size(), 1);
        QTRY_COMPARE(exchange.downloader->partsReceived, 1);
        QCOMPARE(exchange.stored(), QByteArray("d"));
    }

    void unknownRepliesWhileTheHeaderIsAwaitedAreIgnored()
    {
        Exchange exchange(unitSaying({{"Z", "@", "P", "0", headerReply(1)}, {lastReply(2, 'd')}}));
        exchange.downloader->startDownload(1);
        QTRY_COMPARE(exchange.finished.size(), 1);
        QCOMPARE(exchange.commands(), QByteArrayList({"10", "30", "30"}));
        QCOMPARE(exchange.stored(), QByteArray("dd"));
    }

    void anUnknownReplyToAPartIsAskedForAgain()
    {
        Exchange exchange(unitSaying({{headerReply(1)}, {"Z"}, {lastReply(2, 'd')}}));
        exchange.downloader->startDownload(1);
        QTRY_COMPARE(exchange.finished.size(), 1);
        QCOMPARE(exchange.commands(), QByteArrayList({"10", "30", "70", "30"}));
    }

    void aMillionUnknownRepliesDoNotGrowTheStack()
    {
        constexpr int unknown = 1000000;
        const auto unit = unitSaying({{headerReply(1)}});
        unit->whenScriptIsOver = [raw = unit.get()](std::span<const std::uint8_t> /*bytes*/) {
            raw->say(raw->writes < unknown + 2 ? QByteArray("Z") : lastReply(1, 'd'));
        };
        Exchange exchange(unit);
        exchange.downloader->startDownload(1);
        QTRY_COMPARE_WITH_TIMEOUT(exchange.finished.size(), 1, 120000);
        QCOMPARE(unit->writes, unknown + 3); // request, header's acknowledge, resends, the end's acknowledge
        QCOMPARE(exchange.stored(), QByteArray("d"));
    }

    void nothingWithin100MsLeavesTheDownloadStanding()
    {
        Exchange exchange(unitSaying({{headerReply(3)}, {partReply('a')}}));
        exchange.downloader->startDownload(1);
        QTRY_COMPARE(exchange.progress.size(), 1);
        QTest::qWait(settleMs); // nothing must happen in it
        QCOMPARE(exchange.finished.size(), 0);
        QVERIFY(exchange.downloader->logFile.isOpen());
        QCOMPARE(exchange.commands(), QByteArrayList({"10", "30", "30"}));
        const auto reads = virtualbus::callsOf("hid_read_timeout");
        QCOMPARE(reads.back().timeout.value(), 100);
        QCOMPARE(exchange.stored(), QByteArray(63, 'a')); // what came is on disk already
    }

    void aFailedRequestEndsSilently()
    {
        Exchange exchange(unitSaying({{headerReply(3)}}));
        virtualbus::failNextWrites(exchange.number, 1);
        QSignalSpy wait(exchange.downloader.get(), SIGNAL(needwaitLogFileMd5()));
        exchange.downloader->startDownload(1);
        QCOMPARE(wait.size(), 0);
        QCOMPARE(exchange.downloader->lastResult, -1);
        QVERIFY(exchange.downloader->logFile.isOpen());
    }

    void aFailedAcknowledgeEndsSilently()
    {
        Exchange exchange(std::make_shared<ReplyingUnit>());
        virtualbus::failNextWrites(exchange.number, 1);
        exchange.downloader->dataCompleted(0);
        exchange.downloader->dataCompleted(1); // this one is written
        QTest::qWait(settleMs);                // nothing must be read in it
        QCOMPARE(virtualbus::callsOf("hid_read_timeout").size(), std::size_t{0});
        QCOMPARE(exchange.finished.size(), 0);
    }

    void zeroPartsAnnouncedThenAPart()
    {
        Exchange exchange(unitSaying({{headerReply(0)}, {partReply('a')}, {lastReply(1, 'b')}, {"`"}}));
        exchange.downloader->startDownload(1);
        QTRY_VERIFY(!exchange.finished.isEmpty());
        QCOMPARE(exchange.progress.size(), 0);
        QCOMPARE(exchange.stored(), QByteArray(63, 'a') + "b");
    }

    void manyMorePartsThanAnIntHolds()
    {
        Exchange exchange(unitSaying({{headerReply(-1)}, {partReply('a')}}));
        exchange.downloader->startDownload(1);
        QTRY_COMPARE(valuesOf(exchange.progress), QList<int>({-100}));
    }

    void overlongLastPart_data()
    {
        QTest::addColumn<int>("length");
        for (int length = 63; length <= 255; ++length)
            QTest::addRow("length byte %d", length) << length;
    }
    void overlongLastPart()
    {
        QFETCH(const int, length);
        Exchange exchange(unitSaying({{headerReply(1)}, {lastReply(length, 'z')}}));
        exchange.downloader->startDownload(1);
        QTRY_COMPARE(exchange.finished.size(), 1);
        QCOMPARE(exchange.stored(), QByteArray(62, 'z'));
    }

    void aVanishedUnitCostsNoProcessor()
    {
        Exchange exchange(std::make_shared<ReplyingUnit>());
        exchange.downloader->startDownload(1);
        virtualbus::unplug(exchange.number);
        constexpr int watchedMs = 1000;
        const std::clock_t before = std::clock();
        QTest::qWait(watchedMs);
        const double usedMs = 1000.0 * double(std::clock() - before) / CLOCKS_PER_SEC;
        const auto reads = virtualbus::callsOf("hid_read").size();
        QVERIFY2(reads > 1 && reads <= 110, qPrintable(QString::number(reads)));
        QVERIFY2(usedMs < watchedMs / 4.0, qPrintable(QString::number(usedMs)));
    }

    void stopWhileTheHeaderIsAwaited()
    {
        Exchange exchange(std::make_shared<ReplyingUnit>());
        exchange.downloader->startDownload(1);
        exchange.downloader->stopTransfer(); // returns at once, the worker stays in its read
        exchange.downloader->dumpFile();
        QCOMPARE(exchange.finished.size(), 2);
        QVERIFY(exchange.downloader->stopRequested);
        QVERIFY(!exchange.downloader->logFile.isOpen());
    }

    void stopBetweenPartsEndsTheReading()
    {
        Exchange exchange(unitSaying({{headerReply(3)}, {partReply('a')}}));
        exchange.downloader->startDownload(1);
        QTRY_COMPARE(exchange.progress.size(), 1);
        exchange.downloader->stopTransfer();
        const auto reads = virtualbus::callsOf("hid_read_timeout").size();
        QMetaObject::invokeMethod(exchange.downloader.get(), "readLogPart", Qt::BlockingQueuedConnection);
        QVERIFY(virtualbus::callsOf("hid_read_timeout").size() <= reads + 1); // one may have been under way
        QCOMPARE(exchange.stored(), QByteArray(63, 'a'));
        exchange.downloader->startTransfer();
        QVERIFY(!exchange.downloader->stopRequested);
    }

    /// For the thread sanitizer above all: the worker stores parts as fast as it can while the file is closed.
    void stopInTheMiddleOfAFlood()
    {
        const auto unit = unitSaying({{headerReply(100000)}});
        unit->whenScriptIsOver = [raw = unit.get()](std::span<const std::uint8_t> /*bytes*/) {
            raw->say(partReply('a'));
        };
        Exchange exchange(unit);
        exchange.downloader->startDownload(1);
        QTRY_VERIFY(exchange.progress.size() > 50);
        exchange.downloader->stopTransfer();
        const QByteArray stored = exchange.stored();
        QCOMPARE(stored, QByteArray(stored.size(), 'a'));
        QCOMPARE(stored.size() % 63, 0);
    }

    void resendMessage_data()
    {
        QTest::addColumn<int>("next");
        QTest::addColumn<int>("parts");
        QTest::addColumn<int>("headers");
        QTest::newRow("1: the part again") << 1 << 1 << 0;
        QTest::newRow("0: the header again") << 0 << 0 << 1;
        QTest::newRow("2: nothing") << 2 << 0 << 0;
    }
    void resendMessage()
    {
        QFETCH(const int, next);
        Exchange exchange(std::make_shared<ReplyingUnit>());
        exchange.downloader->disconnect(exchange.downloader.get());
        QSignalSpy parts(exchange.downloader.get(), SIGNAL(needreadLogPart()));
        QSignalSpy headers(exchange.downloader.get(), SIGNAL(needwaitLogFileMd5()));
        exchange.downloader->resendMessage(next);
        QTEST(int(parts.size()), "parts");
        QTEST(int(headers.size()), "headers");
        QCOMPARE(exchange.commands(), QByteArrayList({"70"}));
        virtualbus::failNextWrites(exchange.number, 1);
        exchange.downloader->resendMessage(next);
        QTEST(int(parts.size()), "parts"); // a failed write ends the step
        QTEST(int(headers.size()), "headers");
    }

    void acknowledgeOfType2WaitsForAHeader()
    {
        Exchange exchange(std::make_shared<ReplyingUnit>());
        QSignalSpy headers(exchange.downloader.get(), SIGNAL(needwaitLogFileMd5()));
        exchange.downloader->dataCompleted(2);
        QCOMPARE(headers.size(), 1);
    }
};

QTEST_GUILESS_MAIN(TestLogDownloader)
#include "tst_logdownloader.moc"
