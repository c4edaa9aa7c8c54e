#include "tests/log/exchange.h"
#include "tests/support/logcapture.h"
#include "tests/support/ticks.h"

#include <QtTest>

#include <atomic>
#include <thread>

constexpr int someTicks = 20; ///< of 1 ms: that long a part's timer takes to fire

/// What a failing or hostile unit, and a stop at any moment, do to a download.
class TestLogFailures : public QObject
{
    Q_OBJECT

private slots:
    void partsAfterTheEndAreNotStored()
    {
        const LogCapture log;
        Exchange exchange(
            unitSaying({{headerReply(9)}, {lastReply(1, 'd')}, {headerReply(4)}, {}, {partReply('x')}}));
        exchange.download();
        QTRY_COMPARE(valuesOf(exchange.progress), QList<int>({25})); // the count starts anew
        QCOMPARE(log.lines(), QStringList());                        // it is no failure
        QCOMPARE(exchange.stored(), QByteArray("d"));
    }

    void unknownRepliesDoNotGrowTheStack()
    {
        constexpr int unknown = 20000; // a call nested for each fills the worker's small stack long before
        const auto unit = unitSaying({{headerReply(1)}});
        unit->whenScriptIsOver = [raw = unit.get()] {
            raw->reply(static_cast<int>(raw->written.size()) < unknown + 2 ? QByteArray("Z")
                                                                           : lastReply(1, 'd'));
        };
        Exchange exchange(unit);
        exchange.download();
        QCOMPARE(static_cast<int>(unit->written.size()),
                 unknown + 3); // request, header's acknowledge, resends, the end's acknowledge
        QCOMPARE(exchange.stored(), QByteArray("d"));
    }

    void nothingWithin100MsLeavesTheDownloadStanding()
    {
        Exchange exchange(unitSaying({{headerReply(3)}, {partReply('a')}}));
        exchange.downloader->startDownload(1);
        QTRY_COMPARE(exchange.progress.size(), 1);
        QTRY_COMPARE(virtualbus::callsOf("hid_read_timeout").back().result.value(), 0);
        exchange.awaitWorker(); // nothing must follow
        QCOMPARE(exchange.finished.size(), 0);
        QCOMPARE(exchange.commands(), QByteArray("10 30 30"));
        const auto reads = virtualbus::callsOf("hid_read_timeout");
        QCOMPARE(reads.back().timeout.value(), 100);
        QCOMPARE(exchange.stored(), QByteArray(63, 'a')); // what came is on disk already
    }

    void aFailedRequestEndsSilently()
    {
        Exchange exchange(unitSaying({{headerReply(3)}}));
        virtualbus::failNextWrites(exchange.unit->number, 1);
        QSignalSpy wait(exchange.downloader.get(), SIGNAL(needwaitLogFileMd5()));
        exchange.downloader->startDownload(1);
        QCOMPARE(wait.size(), 0);
        QCOMPARE(exchange.finished.size(), 0);
    }

    void aFailedAcknowledgeEndsSilently()
    {
        Exchange exchange(std::make_shared<ScriptedUnit>());
        virtualbus::failNextWrites(exchange.unit->number, 1);
        exchange.downloader->dataCompleted(0);
        exchange.downloader->dataCompleted(1); // this one is written
        passTicks(someTicks);                  // nothing must be read in them
        exchange.awaitWorker();
        QCOMPARE(virtualbus::callsOf("hid_read_timeout").size(), std::size_t{0});
        QCOMPARE(exchange.finished.size(), 0);
    }

    void zeroPartsAnnouncedThenAPart()
    {
        Exchange exchange(unitSaying({{headerReply(0)}, {partReply('a')}, {lastReply(1, 'b')}, {"`"}}));
        exchange.download();
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
        exchange.download();
        QCOMPARE(exchange.stored(), QByteArray(62, 'z'));
    }

    void aVanishedUnitCostsNoProcessor()
    {
        Exchange exchange(std::make_shared<ScriptedUnit>());
        exchange.downloader->startDownload(1);
        QElapsedTimer passed;
        passed.start();
        virtualbus::unplug(exchange.unit->number);
        QTRY_VERIFY(virtualbus::callsOf("hid_read").size() > 50);
        // At most 100 times a second: a slow machine only makes it take longer.
        QVERIFY2(passed.elapsed() >= 490, qPrintable(QString::number(passed.elapsed())));
    }

    void stopWhileTheHeaderIsAwaited()
    {
        Exchange exchange(std::make_shared<ScriptedUnit>());
        exchange.downloader->startDownload(1);
        exchange.downloader->stopTransfer(); // returns at once, the worker stays in its read
        exchange.downloader->dumpFile();
        QCOMPARE(exchange.finished.size(), 2);
    }

    void stopBetweenPartsEndsTheReading()
    {
        Exchange exchange(unitSaying({{headerReply(3)}, {partReply('a')}}));
        exchange.downloader->startDownload(1);
        QTRY_COMPARE(exchange.progress.size(), 1);
        exchange.downloader->stopTransfer();
        const auto reads = virtualbus::callsOf("hid_read_timeout").size();
        QMetaObject::invokeMethod(exchange.downloader.get(), "readLogPart", Qt::BlockingQueuedConnection);
        const auto readsUpToTheStop = virtualbus::callsOf("hid_read_timeout").size();
        QVERIFY(readsUpToTheStop <= reads + 1); // one may have been under way
        QCOMPARE(exchange.stored(), QByteArray(63, 'a'));
        exchange.downloader->startTransfer();
        QMetaObject::invokeMethod(exchange.downloader.get(), "readLogPart", Qt::BlockingQueuedConnection);
        QVERIFY(virtualbus::callsOf("hid_read_timeout").size() > readsUpToTheStop); // goes on
    }

    void stopInTheMiddleOfAFlood()
    {
        const auto unit = unitSaying({{headerReply(100000)}});
        unit->whenScriptIsOver = [raw = unit.get()] { raw->reply(partReply('a')); };
        Exchange exchange(unit);
        exchange.downloader->startDownload(1);
        QTRY_VERIFY(exchange.progress.size() > 50);
        exchange.downloader->stopTransfer();
        const QByteArray stored = exchange.stored();
        QCOMPARE(stored, QByteArray(stored.size(), 'a'));
        QCOMPARE(stored.size() % 63, 0);
    }

    void theProgramEndsInAFloodOfUnknownReplies()
    {
        const auto unit = unitSaying({{headerReply(1)}});
        unit->whenScriptIsOver = [raw = unit.get()] { raw->reply("Z"); };
        Exchange exchange(unit);
        exchange.downloader->startDownload(1);
        QTRY_VERIFY(exchange.commands().count("70") > 50);
        exchange.worker.requestInterruption();
        exchange.worker.quit();
        QTRY_VERIFY(exchange.worker.isFinished());
        QCOMPARE(exchange.finished.size(), 0);
    }

    /// For the thread sanitizer (scripts/test.sh): no queue of Qt's, which it cannot see through, lies
    /// between the two threads. One stores parts as fast as it can while the other stops the download.
    void stopOnAnotherThread()
    {
        const auto unit = std::make_shared<ScriptedUnit>();
        unit->saysForEver = partReply('a');
        Exchange exchange(unit);
        LogDownloader& downloader = *exchange.downloader;
        downloader.disconnect(&downloader);
        std::atomic<int> parts = 0;
        std::atomic<bool> isStopped = false;
        std::thread worker([&] {
            while (!isStopped) {
                downloader.readLogPart();
                ++parts;
            }
        });
        std::thread user([&] { // not this one: a stack with QtTest in it is suppressed as a whole
            const QDeadlineTimer limit(limits::hang());
            while (parts < 1000 && !limit.hasExpired())
                std::this_thread::yield();
            downloader.stopTransfer();
            downloader.dumpFile();
            isStopped = true;
        });
        user.join();
        worker.join();
        const QByteArray stored = exchange.stored();
        QVERIFY(stored.size() >= 1000 * 63);
        QCOMPARE(stored, QByteArray(parts * 63, 'a').left(stored.size())); // the last may have come too late
    }
};

QTEST_GUILESS_MAIN(TestLogFailures)
#include "tst_logfailures.moc"
