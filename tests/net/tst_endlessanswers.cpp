#include "tests/net/scene.h"
#include "tests/support/filecontent.h"

#include <QSignalSpy>
#include <QThread>
#include <QtTest>

namespace {

constexpr qint64 mebibyte = 1024 * 1024;
constexpr qint64 limit = 64 * mebibyte;
constexpr qint64 memoryLimit = 512 * mebibyte; ///< the process's peak: client, server and test together

/// From now on the peak counts afresh. Linux.
void forgetMemoryPeak()
{
    QVERIFY(writeFile("/proc/self/clear_refs", "5"));
}

/// Most memory the process held, in bytes; 0: unknown.
qint64 memoryPeak()
{
    const QList<QByteArray> lines = contentOf("/proc/self/status").split('\n');
    for (const QByteArray& line : lines)
        if (line.startsWith("VmHWM:"))
            return line.mid(6).trimmed().split(' ').first().toLongLong() * 1024;
    return 0;
}

/// Each request answered with bytes that are kept, and with such as are not.
void addRows()
{
    QTest::addColumn<Request>("request");
    QTest::addColumn<char>("filling");
    QTest::newRow("catalogue") << Request::catalogue << 'x';
    QTest::newRow("catalogue of carriage returns") << Request::catalogue << '\r';
    QTest::newRow("change log") << Request::changeLog << 'x';
    QTest::newRow("change log of NUL bytes") << Request::changeLog << '\0';
    QTest::newRow("updater's change log") << Request::mainChangeLog << 'x';
    QTest::newRow("image") << Request::image << 'x';
}

} // namespace

/// A server that sends without end does not fill the memory.
class TestEndlessAnswers : public QObject
{
    Q_OBJECT

private slots:
    void init() { scene.reset(); }
    void plain_data() { addRows(); }
    void plain();
    void compressed_data() { addRequests(); }
    void compressed();
    void justWithinTheLimit();
    void eachAnswerCountsForItself();
    void noClockAfterGivingUp_data() { addRequests(); }
    void noClockAfterGivingUp();

private:
    void expectGivenUp(Request request);

    Scene scene;
};

void TestEndlessAnswers::expectGivenUp(Request request)
{
    scene.ask(request);
    const QStringList expected = scene.networkError(request);
    QTRY_VERIFY(scene.rests(expected.size()));
    const QStringList last = scene.journal->events.mid(scene.journal->events.size() - expected.size());
    QCOMPARE(last, scene.networkError(request)); // before it, reports of the announced size
    QCOMPARE(scene.reply()->error(), QNetworkReply::OperationCanceledError);
    QVERIFY(!scene.clock().isActive());
    QVERIFY(scene.received() > limit);
}

void TestEndlessAnswers::plain()
{
    QFETCH(Request, request);
    QFETCH(char, filling);
    const QByteArray piece(128 * 1024, filling);
    scene.server.setAnswer(Scene::path(request), endless(piece));
    forgetMemoryPeak();
    expectGivenUp(request);
    const qint64 peak = memoryPeak();
#ifdef __SANITIZE_ADDRESS__
    qInfo("peak of %lld MiB not judged: the address sanitizer keeps what is freed", peak / mebibyte);
#else
    QVERIFY2(peak > 0 && peak < memoryLimit, qPrintable(QString("%1 MiB").arg(peak / mebibyte)));
#endif
    QVERIFY2(scene.server.bytesSent() < 3 * limit, "the server was not kept waiting");
}

/// Qt unpacks some 64 MiB at once, so the peak is higher; given up it is all the same.
void TestEndlessAnswers::compressed()
{
    QFETCH(Request, request);
    static const QByteArray packed = qCompress(QByteArray(128 * mebibyte, 'x')).mid(4); // 130 kB
    scene.server.setAnswer(Scene::path(request), ok(packed, {"Content-Encoding: deflate"}));
    expectGivenUp(request);
}

void TestEndlessAnswers::justWithinTheLimit()
{
    const QByteArray log(limit, 'x');
    scene.server.setAnswer(changeLogPath, ok(log));
    scene.ask(Request::changeLog);
    const QString expected = told::signal("findNewVersion", {"27", QString::fromLatin1(log)});
    QTRY_VERIFY(!scene.checker->isBusy());
    QVERIFY(scene.journal->events.last() == expected); // not compared aloud: 64 MiB
}

/// Two answers, each within the limit, that are not so together.
void TestEndlessAnswers::eachAnswerCountsForItself()
{
    const QString found = told::signal("findNewVersion", {"27", ""});
    scene.server.setAnswer(changeLogPath, ok(QByteArray(limit / 2 + 1, '\0'))); // which leaves no text
    for (int time = 1; time <= 2; ++time) {
        scene.ask(Request::changeLog);
        QTRY_VERIFY(!scene.checker->isBusy());
        QCOMPARE(scene.journal->events.count(found), time); // among reports of the announced size
    }
}

/// Qt tells of progress once more behind the piece that was too much, if the last time is 100 ms ago.
void TestEndlessAnswers::noClockAfterGivingUp()
{
    constexpr unsigned long longAgoMs = 150;
    QFETCH(Request, request);
    scene.server.setAnswer(Scene::path(request), endless("x"));
    scene.ask(request);
    scene.pretendReceived(limit);
    const QNetworkReply* const reply = scene.reply();
    connect(reply, &QNetworkReply::readyRead, this, [] { QThread::msleep(longAgoMs); }); // behind the checker
    QSignalSpy progress(reply, &QNetworkReply::downloadProgress);
    QTRY_VERIFY(!scene.checker->isBusy());
    QVERIFY(scene.rests(scene.networkError(request).size()));
    QVERIFY(!progress.isEmpty());
    QVERIFY(!scene.clock().isActive());
}

QTEST_GUILESS_MAIN(TestEndlessAnswers)
#include "tst_endlessanswers.moc"
