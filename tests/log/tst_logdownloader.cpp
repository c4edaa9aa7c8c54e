#include "tests/log/exchange.h"
#include "tests/support/rows.h"

#include <QMetaMethod>
#include <QTimer>
#include <QtTest>

#include <atomic>

namespace {

void addBytes()
{
    QTest::addColumn<int>("byte");
    for (int byte = 0; byte <= 0xFF; ++byte)
        QTest::addRow("0x%02X", byte) << byte;
}

} // namespace

class TestLogDownloader : public QObject
{
    Q_OBJECT

private slots:
    void metaObject()
    {
        const QByteArrayList expected{"logDownloadProgress(int)",
                                      "needwaitLogFileMd5()",
                                      "needreadLogPart()",
                                      "needdataCompleted(int)",
                                      "needresendMessage(int)",
                                      "logDownloadFinished()",
                                      "needreadLogPart2()",
                                      "startDownload(int)",
                                      "dumpFile()",
                                      "cleanHistory()",
                                      "checkFile()",
                                      "resendMessage(int)",
                                      "dataCompleted(int)",
                                      "waitLogFileMd5()",
                                      "readLogPart()",
                                      "stopTransfer()",
                                      "startTransfer()",
                                      "process()"};
        const QMetaObject& meta = LogDownloader::staticMetaObject;
        QByteArrayList methods;
        for (int i = meta.methodOffset(); i < meta.methodCount(); ++i)
            methods += meta.method(i).methodSignature();
        QCOMPARE(methods, expected);
    }

    void anEmptyFileIsCreatedAtOnce()
    {
        QObject parent;
        const QStringList before = logFiles();
        const LogDownloader downloader(nullptr, &parent);
        const QString name = newLogFile(before);
        QCOMPARE(downloader.parent(), nullptr);
        QVERIFY(QFile::exists(name));
        QCOMPARE(QFileInfo(name).size(), 0);
        const QRegularExpression format(R"(^\d{4}-\d\d-\d\d_\d\d_\d\d_\d\d_log\.enc$)");
        QVERIFY2(format.match(QFileInfo(name).fileName()).hasMatch(), qPrintable(name));
        QFile::remove(name);
    }

    void requestGoesToTheModelsPlace_data()
    {
        const Rows<UnitType, int> row("type", "index");
        row("LMB-2", UNIT_LMB2, 1);
        row("PLT65", UNIT_PLT65, 61);
    }
    void requestGoesToTheModelsPlace()
    {
        QFETCH(const UnitType, type);
        QFETCH(const int, index);
        Exchange exchange(unitSaying({{"`"}}), type);
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
        QCOMPARE(exchange.stored(), QByteArray(""));
        QCOMPARE(exchange.commands(), QByteArrayList({"10"}));
    }

    void threePartsOf136Bytes()
    {
        Exchange exchange(
            unitSaying({{headerReply(3)}, {partReply('a')}, {partReply('b')}, {lastReply(10, 'c')}}));
        exchange.downloader->startDownload(1);
        QTRY_COMPARE(exchange.finished.size(), 1);
        QCOMPARE(exchange.stored(), QByteArray(63, 'a') + QByteArray(63, 'b') + QByteArray(10, 'c'));
        QCOMPARE(valuesOf(exchange.progress), QList<int>({33, 66}));
        QCOMPARE(exchange.commands(), QByteArrayList({"10", "30", "30", "30", "30"}));
    }

    void nothingIsReadBehindTheLastPart()
    {
        Exchange exchange(unitSaying({{headerReply(1)}, {lastReply(10, 'c')}}));
        exchange.downloader->startDownload(1);
        QTRY_COMPARE(exchange.finished.size(), 1);
        std::atomic<bool> later = false; // behind any timer of the download's own, on its thread
        QTimer::singleShot(2, exchange.downloader.get(), [&later] { later = true; });
        QTRY_VERIFY(later);
        QCOMPARE(virtualbus::callsOf("hid_read_timeout").size(), std::size_t{1});
    }

    void progressOf200PartsIsTruncated()
    {
        ScriptedUnit::Answers script{{headerReply(200)}};
        QList<int> expected;
        for (int part = 1; part < 200; ++part) {
            script.push_back({partReply('a')});
            expected += part / 2; // 0, 1, 1, 2, 2 ... 99, 99
        }
        script.push_back({lastReply(0, 'x')});
        Exchange exchange(unitSaying(script));
        exchange.downloader->startDownload(1);
        QTRY_COMPARE(exchange.finished.size(), 1);
        QCOMPARE(valuesOf(exchange.progress), expected);
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
        // request; header and three parts acknowledged; new request; its header acknowledged; the end
        // acknowledged
        QCOMPARE(exchange.commands(), QByteArrayList({"10", "30", "30", "30", "30", "10", "30", "30"}));
        QCOMPARE(exchange.stored().size(), 3 * 63 + 1);
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

    void anyByteInsteadOfTheHeader_data() { addBytes(); }
    void anyByteInsteadOfTheHeader()
    {
        QFETCH(const int, byte);
        const QByteArray said = byte == 0x20 ? headerReply(1) : QByteArray(1, static_cast<char>(byte));
        Exchange exchange(unitSaying({{said, headerReply(1)}, {lastReply(1, 'd')}}));
        exchange.downloader->startDownload(1);
        QTRY_VERIFY(!exchange.finished.isEmpty());
        const QByteArray commands = byte == 0x60 ? "10" : byte == 0x20 ? "10 30 70 30" : "10 30 30";
        QCOMPARE(exchange.commands().join(' '), commands);
        QCOMPARE(exchange.stored(), QByteArray(byte == 0x60 ? "" : "d"));
    }

    void anyByteInsteadOfAPart_data() { addBytes(); }
    void anyByteInsteadOfAPart()
    {
        QFETCH(const int, byte);
        const QByteArray said(64, static_cast<char>(byte));
        Exchange exchange(unitSaying({{headerReply(byte == 0x40 ? 2 : 1)}, {said}, {lastReply(1, 'd')}}));
        exchange.downloader->startDownload(1);
        QTRY_VERIFY(!exchange.finished.isEmpty());
        QByteArray commands = "10 30 70 30";
        QByteArray stored = "d";
        if (byte == 0x40) {
            commands = "10 30 30 30";
            stored = QByteArray(63, '@') + 'd';
        } else if (byte == 0x50) { // says that it holds more than it can
            commands = "10 30 30";
            stored = QByteArray(62, 'P');
        }
        QCOMPARE(exchange.commands().join(' '), commands);
        QCOMPARE(exchange.stored(), stored);
    }

    void resendMessage_data()
    {
        const Rows<int, int, int> row("next", "parts", "headers");
        row("1: the part again", 1, 1, 0);
        row("0: the header again", 0, 0, 1);
        row("2: nothing", 2, 0, 0);
    }
    void resendMessage()
    {
        QFETCH(const int, next);
        Exchange exchange(std::make_shared<ScriptedUnit>());
        exchange.downloader->disconnect(exchange.downloader.get());
        QSignalSpy parts(exchange.downloader.get(), SIGNAL(needreadLogPart()));
        QSignalSpy headers(exchange.downloader.get(), SIGNAL(needwaitLogFileMd5()));
        exchange.downloader->resendMessage(next);
        QTEST(int(parts.size()), "parts");
        QTEST(int(headers.size()), "headers");
        QCOMPARE(exchange.commands(), QByteArrayList({"70"}));
        virtualbus::failNextWrites(exchange.unit->number, 1);
        exchange.downloader->resendMessage(next);
        QTEST(int(parts.size()), "parts"); // a failed write ends the step
        QTEST(int(headers.size()), "headers");
    }

    void acknowledgeOfType2WaitsForAHeader()
    {
        Exchange exchange(std::make_shared<ScriptedUnit>());
        QSignalSpy headers(exchange.downloader.get(), SIGNAL(needwaitLogFileMd5()));
        exchange.downloader->dataCompleted(2);
        QCOMPARE(headers.size(), 1);
    }
};

QTEST_GUILESS_MAIN(TestLogDownloader)
#include "tst_logdownloader.moc"
