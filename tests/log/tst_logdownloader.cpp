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
        exchange.download();
        std::vector<std::uint8_t> expected(65, 0);
        expected[static_cast<std::size_t>(index)] = 0x10;
        expected[static_cast<std::size_t>(index) + 1] = 1;
        QCOMPARE(virtualbus::writesTo(1), std::vector<std::vector<std::uint8_t>>({expected}));
    }

    void download_data()
    {
        const Rows<ScriptedUnit::Answers, QList<int>, QByteArray, QByteArray> row("script", "progress",
                                                                                  "commands", "stored");
        row("no log: an empty file at once", {{"`"}}, {}, "10", "");
        row("three parts of 136 bytes",
            {{headerReply(3)}, {partReply('a')}, {partReply('b')}, {lastReply(10, 'c')}}, {33, 66},
            "10 30 30 30 30", QByteArray(63, 'a') + QByteArray(63, 'b') + QByteArray(10, 'c'));
        row("an exact multiple ends with an empty last part",
            {{headerReply(2)}, {partReply('a')}, {lastReply(0, 'x')}}, {50}, "10 30 30 30",
            QByteArray(63, 'a'));
        row("unknown replies while the header is awaited are ignored",
            {{"Z", "@", "P", "0", headerReply(1)}, {lastReply(2, 'd')}}, {}, "10 30 30", "dd");
        row("an unknown reply to a part is asked for again", {{headerReply(1)}, {"Z"}, {lastReply(2, 'd')}},
            {}, "10 30 70 30", "dd");
        row("a wrong count asks again and ends all the same",
            {{headerReply(2)},
             {partReply('a')},
             {partReply('b')},
             {partReply('c')},
             {lastReply(1, 'd')}, // after the third part's acknowledge
             {headerReply(4)}},   // after the new request; acknowledged, and so is the end
            {50, 100, 150}, "10 30 30 30 30 10 30 30",
            QByteArray(63, 'a') + QByteArray(63, 'b') + QByteArray(63, 'c') + 'd');
    }
    void download()
    {
        QFETCH(const ScriptedUnit::Answers, script);
        Exchange exchange(unitSaying(script));
        exchange.download();
        QCOMPARE(exchange.finished.size(), 1);
        QTEST(valuesOf(exchange.progress), "progress");
        QTEST(exchange.commands(), "commands");
        QTEST(exchange.stored(), "stored");
    }

    void nothingIsReadBehindTheLastPart()
    {
        Exchange exchange(unitSaying({{headerReply(1)}, {lastReply(10, 'c')}}));
        exchange.download();
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
        exchange.download();
        QCOMPARE(valuesOf(exchange.progress), expected);
    }

    void anyByteInsteadOfTheHeader_data() { addBytes(); }
    void anyByteInsteadOfTheHeader()
    {
        QFETCH(const int, byte);
        const QByteArray said = byte == 0x20 ? headerReply(1) : QByteArray(1, static_cast<char>(byte));
        Exchange exchange(unitSaying({{said, headerReply(1)}, {lastReply(1, 'd')}}));
        exchange.download();
        const QByteArray commands = byte == 0x60 ? "10" : byte == 0x20 ? "10 30 70 30" : "10 30 30";
        QCOMPARE(exchange.commands(), commands);
        QCOMPARE(exchange.stored(), QByteArray(byte == 0x60 ? "" : "d"));
    }

    void anyByteInsteadOfAPart_data() { addBytes(); }
    void anyByteInsteadOfAPart()
    {
        QFETCH(const int, byte);
        const QByteArray said(64, static_cast<char>(byte));
        Exchange exchange(unitSaying({{headerReply(byte == 0x40 ? 2 : 1)}, {said}, {lastReply(1, 'd')}}));
        exchange.download();
        QByteArray commands = "10 30 70 30";
        QByteArray stored = "d";
        if (byte == 0x40) {
            commands = "10 30 30 30";
            stored = QByteArray(63, '@') + 'd';
        } else if (byte == 0x50) { // says that it holds more than it can
            commands = "10 30 30";
            stored = QByteArray(62, 'P');
        }
        QCOMPARE(exchange.commands(), commands);
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
        QCOMPARE(exchange.commands(), QByteArray("70"));
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
