#include "app/logmessageoutput.h"

#include "tests/support/easternlocales.h"
#include "tests/support/filecontent.h"
#include "tests/support/rows.h"

#include <QDateTime>
#include <QDir>
#include <QMap>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTextCodec>
#include <QtTest>

#include <cstdlib>
#include <functional>
#include <latch>
#include <thread>

#ifdef Q_OS_WIN
#include <windows.h>
#endif

namespace {

constexpr int linesEach = 500;

void say(const char* message)
{
    logMessageOutput(QtWarningMsg, message);
}

void sayMany(char speaker)
{
    for (int i = 0; i < linesEach; ++i)
        say((QByteArray(40, speaker) + QByteArray::number(i)).constData());
}

void untilTheNextSecond()
{
    const QDateTime start = QDateTime::currentDateTime();
    while (QDateTime::currentDateTime().toString("ss") == start.toString("ss"))
        QThread::msleep(5); // the second is part of the file's name: only time brings the next one
}

/// The sink keeps its file to the process's end, so each of these runs in a process and a folder of its own.
const QMap<QString, std::function<void()>> speeches{
    {"two messages",
     [] {
         say("first");
         say("second");
     }},
    {"two seconds",
     [] {
         say("first");
         untilTheNextSecond();
         say("second");
     }},
    {"every type",
     [] {
         for (const QtMsgType type : {QtDebugMsg, QtInfoMsg, QtWarningMsg, QtCriticalMsg, QtFatalMsg})
             logMessageOutput(type, QByteArray::number(type).constData());
     }},
    {"null message",
     [] {
         say("before");
         say(nullptr);
         say("behind");
     }},
    {"null message first", [] { say(nullptr); }},
    {"several lines", [] { say("one\ntwo\n"); }},
    {"local encoding",
     [] {
         QTextCodec::setCodecForLocale(QTextCodec::codecForName("CP1251"));
         say("\xC4\xE0"); // "Да"
     }},
    {"folder is gone",
     [] {
         const QString folder = QDir::currentPath();
         QDir(folder).removeRecursively();
         say("lost");
         QDir().mkpath(folder);
         QDir::setCurrent(folder);
         say("kept");
     }},
    {"two threads",
     [] {
         std::latch begin(2);
         const auto speak = [&](char speaker) {
             begin.arrive_and_wait();
             sayMany(speaker);
         };
         std::thread other(speak, 'b');
         speak('a');
         other.join();
     }},
    {"crash",
     [] {
         say("last words");
         std::_Exit(0); // as good as a crash: nothing is flushed
     }},
};

} // namespace

class TestLogMessageOutput : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void fileIsNamedAfterItsFirstMessage();
    void fileOfTheSameSecondGoesOn();
    void laterSecondSameFile();
    void lineStamp();
    void digits_data() { addEasternLocales(); }
    void digits();
    void fileAndEcho_data();
    void fileAndEcho();
    void textStaysAsItIs();
    void twoThreads();

private:
    void speak(const QString& speech, const QByteArray& locale = "C");
    [[nodiscard]] QStringList texts() const;

    std::unique_ptr<QTemporaryDir> folder;
    QDateTime start;
    QByteArray echo;
    QStringList files;
    QByteArrayList lines; ///< of the one file
};

void TestLogMessageOutput::init()
{
    folder = std::make_unique<QTemporaryDir>();
}

void TestLogMessageOutput::speak(const QString& speech, const QByteArray& locale)
{
    qputenv("LC_ALL", locale); // for the process; this one has taken its own
    QProcess process;
    process.setWorkingDirectory(folder->path());
    start = QDateTime::fromSecsSinceEpoch(QDateTime::currentSecsSinceEpoch());
    process.start(QCoreApplication::applicationFilePath(), {"--speech", speech});
    QVERIFY(process.waitForFinished(limits::hangMs()));
    QCOMPARE(process.exitStatus(), QProcess::NormalExit);
    QCOMPARE(process.exitCode(), 0);
    echo = process.readAllStandardOutput().replace("\r\n", "\n"); // as Windows ends the lines of a text
    files = QDir(folder->path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden);
    if (files.isEmpty())
        return;
    lines = contentOf(folder->filePath(files.first())).split('\n');
    QCOMPARE(lines.takeLast(), QByteArray()); // the last line has its end
}

/// The lines behind their stamps.
QStringList TestLogMessageOutput::texts() const
{
    QStringList all;
    for (const QByteArray& line : lines)
        all.append(QString::fromUtf8(line.mid(line.indexOf(" : ") + 3)));
    return all;
}

void TestLogMessageOutput::fileIsNamedAfterItsFirstMessage()
{
    speak("two messages");
    QCOMPARE(files.size(), 1);
    const QRegularExpression name(R"(^\d{4}-\d\d-\d\d_\d\d_\d\d_\d\d\.log$)");
    QVERIFY2(name.match(files.first()).hasMatch(), qPrintable(files.first()));
    const QDateTime named = QDateTime::fromString(files.first(), "yyyy-MM-dd_hh_mm_ss'.log'");
    QVERIFY(named >= start && named <= QDateTime::currentDateTime());
    QCOMPARE(texts(), (QStringList{"first", "second"}));
    QCOMPARE(echo, QByteArray("first\nsecond\n"));
}

/// As when the program was started twice.
void TestLogMessageOutput::fileOfTheSameSecondGoesOn()
{
    constexpr int secondsAhead = 30;
    QByteArray grown;
    for (int i = 0; i < secondsAhead; ++i) {
        const QDateTime then = QDateTime::currentDateTime().addSecs(i);
        QVERIFY(writeFile(folder->filePath(then.toString("yyyy-MM-dd_hh_mm_ss'.log'")), "earlier\n"));
    }
    speak("two messages");
    for (const QString& name : qAsConst(files)) {
        const QByteArray text = contentOf(folder->filePath(name));
        QVERIFY2(text.startsWith("earlier\n"), qPrintable(name));
        grown += text.mid(8);
    }
    QCOMPARE(grown.count(" : "), 2);
}

void TestLogMessageOutput::laterSecondSameFile()
{
    speak("two seconds");
    QCOMPARE(files.size(), 1);
    QCOMPARE(texts(), (QStringList{"first", "second"}));
    QVERIFY(lines[0].left(19) < lines[1].left(19));
}

void TestLogMessageOutput::lineStamp()
{
    speak("two messages");
    const QRegularExpression line(R"(^(\d{4}-\d\d-\d\d_\d\d:\d\d:\d\d) : (first|second)$)");
    for (const QByteArray& written : lines) {
        const auto match = line.match(written);
        QVERIFY2(match.hasMatch(), written);
        const QDateTime stamped = QDateTime::fromString(match.captured(1), "yyyy-MM-dd_hh:mm:ss");
        QVERIFY(stamped >= start && stamped <= QDateTime::currentDateTime());
    }
}

/// 0 to 9, in the name and in the lines.
void TestLogMessageOutput::digits()
{
    QFETCH(QByteArray, locale);
    speak("two messages", locale);
    const QRegularExpression digitsOnly("^[-_:0-9]{19}( : first| : second|\\.log)$");
    for (const QString& text : {files.value(0), QString(lines.value(0)), QString(lines.value(1))})
        QVERIFY2(digitsOnly.match(text).hasMatch(), qPrintable(text));
}

void TestLogMessageOutput::fileAndEcho_data()
{
    const Rows<QStringList, QByteArray> row("inTheFile", "echoed");
    row("every type", {"0", "4", "1", "2", "3"}, "0\n4\n1\n2\n3\n"); // none ends the process
    row("null message", {"before", "behind"}, "before\n");           // spoils the echo for good, not the file
    row("null message first", {}, "");
    row("local encoding", {"\xD0\x94\xD0\xB0"}, "\xC4\xE0\n");
#ifndef Q_OS_WIN // which keeps the folder that a program runs in
    row("folder is gone", {"kept"}, "lost\nkept\n");
#endif
    row("crash", {"last words"}, "last words\n");
}

void TestLogMessageOutput::fileAndEcho()
{
    QFETCH(QByteArray, echoed);
#ifdef Q_OS_WIN
    QVERIFY2(GetACP() != 1251, "a system whose own code page this is shows nothing");
#endif
    speak(QTest::currentDataTag());
    QTEST(texts(), "inTheFile");
    QCOMPARE(echo, echoed);
    QCOMPARE(files.size(), 1);
}

void TestLogMessageOutput::textStaysAsItIs()
{
    speak("several lines");
    QCOMPARE(lines.size(), 3);
    QVERIFY(lines[0].endsWith(" : one"));
    QCOMPARE(lines[1], QByteArray("two"));
    QCOMPARE(lines[2], QByteArray());
    QCOMPARE(echo, QByteArray("one\ntwo\n\n"));
}

/// No line is torn, none is lost, each thread's own stay in order.
void TestLogMessageOutput::twoThreads()
{
    speak("two threads");
    QMap<QChar, int> next;
    const QRegularExpression line("^(a{40}|b{40})(\\d+)$");
    const QStringList written = texts();
    QCOMPARE(written.size(), 2 * linesEach);
    for (const QString& text : written) {
        const auto match = line.match(text);
        QVERIFY2(match.hasMatch(), qPrintable(text));
        QCOMPARE(match.captured(2).toInt(), next[text[0]]++);
    }
    QCOMPARE(QString(echo), written.join('\n') + '\n');
}

int main(int argc, char** argv)
{
    QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.value(1) == "--speech") {
        speeches.value(arguments.value(2))();
        return 0;
    }
    TestLogMessageOutput test;
    return QTest::qExec(&test, argc, argv);
}
#include "tst_logmessageoutput.moc"
