#include "tests/net/scene.h"
#include "tests/support/rows.h"

#include <QtTest>

/// The change logs of a newer firmware and of a newer updater. They differ in the address and in the signal.
/// What holds for every address in a catalogue is tried with that of the image, too.
class TestChangeLog : public QObject
{
    Q_OBJECT

private slots:
    void init() { scene.reset(); }
    void address_data();
    void address();
    void badAddressAsksNobody_data();
    void badAddressAsksNobody();
    void secondUseOfAnAddressFails_data() { bothLogs(); }
    void secondUseOfAnAddressFails();
    void text_data();
    void text();
    void successLeavesNothing_data() { bothLogs(); }
    void successLeavesNothing();
    void errorKeepsThePartialText_data() { bothLogs(); }
    void errorKeepsThePartialText();
    void eachPieceEndsAtItsNul_data() { bothLogs(); }
    void eachPieceEndsAtItsNul();
    void characterSplitBetweenPieces();

private:
    static void bothLogs();
    [[nodiscard]] static QStringList offer(Request log, const QString& text);

    Scene scene;
};

void TestChangeLog::bothLogs()
{
    QTest::addColumn<Request>("log");
    QTest::newRow("firmware") << Request::changeLog;
    QTest::newRow("updater") << Request::mainChangeLog;
}

QStringList TestChangeLog::offer(Request log, const QString& text)
{
    return log == Request::changeLog ? told::offer(text) : told::updaterOffer(text);
}

void TestChangeLog::address_data()
{
    const Rows<Request, QString, QString, QByteArray> row("log", "scheme", "path", "askedFor");
    row("http", Request::changeLog, "http://", "/a/b.txt", "/a/b.txt");
    row("https is asked for as http", Request::changeLog, "https://", "/a/b.txt", "/a/b.txt");
    row("blank in the path", Request::changeLog, "http://", "/a b.txt", "/a%20b.txt");
    row("query", Request::changeLog, "http://", "/a.txt?b=c&d", "/a.txt?b=c&d");
    row("updater, http", Request::mainChangeLog, "http://", "/a/b.txt", "/a/b.txt");
    row("updater, https is asked for as http", Request::mainChangeLog, "https://", "/a/b.txt", "/a/b.txt");
}

void TestChangeLog::address()
{
    QFETCH(Request, log);
    QFETCH(QString, scheme);
    QFETCH(QString, path);
    QFETCH(QByteArray, askedFor);
    scene.ask(log, scheme + "127.0.0.1:" + QString::number(scene.server.port()) + path);
    QVERIFY(scene.clock().isActive());
    QTRY_COMPARE(scene.server.requests().size(), 1);
    QVERIFY2(scene.server.requests().first().startsWith("GET " + askedFor + " HTTP/1.1\r\n"),
             scene.server.requests().first());
}

void TestChangeLog::badAddressAsksNobody_data()
{
    const Rows<Request, QString> rows("request", "address");
    for (const Request request : {Request::changeLog, Request::mainChangeLog, Request::image}) {
        const auto row = [&](const char* name, const char* address) {
            rows(nameOf(request) + ", " + name, request, address);
        };
        row("no path", "http://127.0.0.1");
        row("no scheme", "127.0.0.1/a.txt");
        row("two slashes before the path", "http://127.0.0.1//a.txt");
        row("nothing", "");
    }
}

void TestChangeLog::badAddressAsksNobody()
{
    QFETCH(Request, request);
    QFETCH(QString, address);
    scene.ask(request, address);
    QCOMPARE(scene.journal->all, told::downloadError());
    QVERIFY(!scene.checker->isBusy() && !scene.clock().isActive());
}

void TestChangeLog::secondUseOfAnAddressFails()
{
    QFETCH(Request, log);
    scene.server.setAnswer("/a.txt", ok("better"));
    scene.ask(log, scene.server.address("/a.txt"));
    QTRY_COMPARE(scene.journal->events, offer(log, "better"));
    scene.journal->events.clear();
    if (log == Request::changeLog)
        scene.checker->downloadChangeLog();
    else
        scene.checker->downloadMainChangeLog();
    QCOMPARE(scene.journal->events, told::downloadError());
    QCOMPARE(scene.server.requests().size(), 1);
}

void TestChangeLog::text_data()
{
    const Rows<Request, QByteArray, QString> rows("log", "body", "shown");
    for (const Request log : {Request::changeLog, Request::mainChangeLog}) {
        const auto row = [&](const char* name, const QByteArray& body, const QString& shown) {
            rows(nameOf(log) + ", " + name, log, body, shown);
        };
        row("one line", "better", "better");
        row("carriage returns stay", "a\r\nb\r\n", "a\r\nb\r\n");
        row("UTF-8", "\xC3\xA4\xE2\x82\xAC", QString::fromUtf8("\xC3\xA4\xE2\x82\xAC"));
        row("ends at a NUL byte", QByteArray("a\0b", 3), "a");
    }
}

void TestChangeLog::text()
{
    QFETCH(Request, log);
    QFETCH(QByteArray, body);
    QFETCH(QString, shown);
    scene.server.setAnswer(Scene::path(log), ok(body));
    scene.ask(log);
    QTRY_COMPARE(scene.journal->events, offer(log, shown));
}

void TestChangeLog::successLeavesNothing()
{
    QFETCH(Request, log);
    scene.leaveStaleCatalogue();
    scene.server.setAnswer(Scene::path(log), ok("first"));
    scene.ask(log);
    const QPointer<QNetworkReply> reply = scene.reply();
    QTRY_COMPARE(scene.journal->events, offer(log, "first"));
    QCOMPARE(scene.reply(), nullptr);
    QVERIFY(!scene.clock().isActive());
    QTRY_VERIFY(reply.isNull());

    scene.server.setAnswer(Scene::path(log), ok("second"));
    scene.ask(log);
    QTRY_COMPARE(scene.journal->events, offer(log, "first") + offer(log, "second"));
    QVERIFY(!scene.hasStaleCatalogue());
}

void TestChangeLog::errorKeepsThePartialText()
{
    QFETCH(Request, log);
    scene.server.setAnswer(Scene::path(log), {{announced(9, "half")}});
    scene.ask(log);
    QTRY_VERIFY(scene.rests(4));
    QCOMPARE(scene.journal->events, scene.networkError(log));
    QVERIFY(!scene.clock().isActive());

    scene.journal->events.clear();
    scene.server.setAnswer(Scene::path(log), ok(", whole"));
    scene.ask(log);
    QTRY_COMPARE(scene.journal->events, offer(log, "half, whole"));
}

void TestChangeLog::eachPieceEndsAtItsNul()
{
    QFETCH(Request, log);
    const QByteArray head = announced(10, "");
    scene.server.setAnswer(Scene::path(log),
                           {{head + "one" + '\0' + 'x', QByteArray("two\0y", 5)}, End::keepOpen, true});
    scene.ask(log);
    QTRY_COMPARE(scene.received(), 5); // the first piece
    scene.server.goOn();
    QTRY_COMPARE(scene.journal->events, offer(log, "onetwo"));
}

void TestChangeLog::characterSplitBetweenPieces()
{
    scene.server.setAnswer(changeLogPath, {{announced(4, "a\xC3"), "\xA4z"}, End::keepOpen, true});
    scene.ask(Request::changeLog);
    QTRY_COMPARE(scene.received(), 2); // the first piece
    scene.server.goOn();
    const QString shown = 'a' + QString(2, QChar(QChar::ReplacementCharacter)) + 'z'; // each half by itself
    QTRY_COMPARE(scene.journal->events, offer(Request::changeLog, shown));
}

QTEST_GUILESS_MAIN(TestChangeLog)
#include "tst_changelog.moc"
