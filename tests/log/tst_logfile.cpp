#include "log/logdownloader.h"
#include "log/logfilename.h"
#include "tests/support/easternlocales.h"
#include "tests/support/filecontent.h"
#include "tests/support/inside.h"
#include "tests/support/programfiles.h"
#include "tests/support/readonlyfolder.h"
#include "tests/support/rows.h"
#include "tests/support/texts.h"

#include <QDir>
#include <QtTest>

#include <optional>

namespace {

const QDateTime moment(QDate(2016, 3, 1), QTime(14, 5, 9));

/// Of the name that the nth attempt takes, from 1.
QString pathOf(int attempt)
{
    return besideProgram(logfilename::at(moment, attempt));
}

QList<int> upTo(int last)
{
    QList<int> numbers;
    for (int number = 1; number <= last; ++number)
        numbers += number;
    return numbers;
}

} // namespace

/// The file that a start of the program creates for the unit's log.
class TestLogFile : public QObject
{
    Q_OBJECT

private slots:
    void cleanup();
    void name_data();
    void name();
    void firstFreeName_data();
    void firstFreeName();
    void noFreeName();
    void namesTakenByOtherThings();
#ifdef Q_OS_LINUX // tst_windows starts the program for Windows there
    void folderCannotBeWritten_data();
    void folderCannotBeWritten();
    void folderCannotBeWrittenAtTheStart();
#endif
    void startsOfOneSecond();

private:
    /// The number of the name that a start takes; nothing: none.
    static std::optional<int> claim(LogDownloader& downloader);
};

void TestLogFile::cleanup()
{
    QDir folder(QCoreApplication::applicationDirPath());
    const QStringList logs =
        folder.entryList({filename::anyLog}, QDir::AllEntries | QDir::System | QDir::Hidden);
    for (const QString& log : logs)
        if (!folder.remove(log))
            folder.rmdir(log);
}

std::optional<int> TestLogFile::claim(LogDownloader& downloader)
{
    inside::of(downloader).logFile.close();
    if (!inside::claimFile(downloader, moment))
        return std::nullopt;
    for (const int number : upTo(logfilename::mostAttempts))
        if (inside::of(downloader).logFile.fileName() == pathOf(number))
            return number;
    return 0;
}

void TestLogFile::name_data()
{
    const Rows<int, QString> row("attempt", "name");
    row("first", 1, "2016-03-01_14_05_09_log.enc");
    row("second", 2, "2016-03-01_14_05_09-2_log.enc");
    row("third", 3, "2016-03-01_14_05_09-3_log.enc");
    row("tenth", 10, "2016-03-01_14_05_09-10_log.enc");
    row("last", 99, "2016-03-01_14_05_09-99_log.enc");
}

void TestLogFile::name()
{
    QFETCH(int, attempt);
    QTEST(logfilename::at(moment, attempt), "name");
    const QLocale before;
    QLocale::setDefault(QLocale(QString::fromLatin1(easternLocales().first())));
    const QString elsewhere = logfilename::at(moment, attempt);
    QLocale::setDefault(before);
    QTEST(elsewhere, "name");
}

void TestLogFile::firstFreeName_data()
{
    const Rows<QList<int>, int> row("taken", "claimed");
    row("none taken", {}, 1);
    row("one taken", upTo(1), 2);
    row("two taken", upTo(2), 3);
    row("a gap", {1, 3}, 2);
    row("the first is free again", {2, 3}, 1);
    row("the last is free", upTo(98), 99);
}

void TestLogFile::firstFreeName()
{
    QFETCH(QList<int>, taken);
    QFETCH(int, claimed);
    for (const int number : qAsConst(taken))
        QVERIFY(writeFile(pathOf(number), "a log"));
    LogDownloader downloader(nullptr, nullptr);
    QCOMPARE(claim(downloader), std::optional(claimed));
    QVERIFY(inside::of(downloader).logFile.isOpen());
    QCOMPARE(QFileInfo(inside::of(downloader).logFile.fileName()).size(), qint64{0});
    for (const int number : qAsConst(taken))
        QCOMPARE(contentOf(pathOf(number)), QByteArray("a log"));
}

/// As when the file cannot be opened. An empty one is another program's too.
void TestLogFile::noFreeName()
{
    for (const int number : upTo(logfilename::mostAttempts))
        QVERIFY(writeFile(pathOf(number), number % 2 == 0 ? "a log" : ""));
    LogDownloader downloader(nullptr, nullptr);
    QCOMPARE(claim(downloader), std::nullopt);
    QVERIFY(!inside::of(downloader).logFile.isOpen());
    QVERIFY(!QFile::exists(pathOf(logfilename::mostAttempts + 1)));
    QCOMPARE(QFileInfo(pathOf(2)).size(), qint64{5});
}

void TestLogFile::namesTakenByOtherThings()
{
    QVERIFY(QDir().mkdir(pathOf(1)));
    QVERIFY(QFile::link("nowhere", pathOf(2)));
    LogDownloader downloader(nullptr, nullptr);
    QCOMPARE(claim(downloader), std::optional(3));
    QVERIFY(!QFile::exists(besideProgram("nowhere")));
}

#ifdef Q_OS_LINUX
void TestLogFile::folderCannotBeWritten_data()
{
    QTest::addColumn<int>("taken");
    QTest::newRow("no name taken") << 0;
    QTest::newRow("three names taken") << 3;
}

/// The first name that is free is the last that is tried: another one would fail in the same way.
void TestLogFile::folderCannotBeWritten()
{
    QFETCH(int, taken);
    for (const int number : upTo(taken))
        QVERIFY(writeFile(pathOf(number), "a log"));
    LogDownloader downloader(nullptr, nullptr);
    {
        const ReadOnlyFolder folder(QFile::encodeName(QCoreApplication::applicationDirPath()));
        QCOMPARE(claim(downloader), std::nullopt);
    }
    QVERIFY(!inside::of(downloader).logFile.isOpen());
    QCOMPARE(inside::of(downloader).logFile.fileName(), pathOf(taken + 1));
    QVERIFY(!QFile::exists(inside::of(downloader).logFile.fileName()));
}

/// The program says so as it starts, and the log's parts then go nowhere.
void TestLogFile::folderCannotBeWrittenAtTheStart()
{
    QTest::ignoreMessage(QtSystemMsg, "LogDownloader::LogDownloader (Permission denied)");
    const ReadOnlyFolder folder(QFile::encodeName(QCoreApplication::applicationDirPath()));
    LogDownloader downloader(nullptr, nullptr);
    QVERIFY(!inside::of(downloader).logFile.isOpen());
}
#endif

void TestLogFile::startsOfOneSecond()
{
    std::vector<std::unique_ptr<LogDownloader>> starts;
    QSet<QString> names;
    for (int start = 1; start <= 5; ++start) {
        starts.push_back(std::make_unique<LogDownloader>(nullptr, nullptr));
        names.insert(inside::of(*starts.back()).logFile.fileName());
        QVERIFY(inside::of(*starts.back()).logFile.isOpen());
    }
    QCOMPARE(names.size(), 5);
}

QTEST_GUILESS_MAIN(TestLogFile)
#include "tst_logfile.moc"
