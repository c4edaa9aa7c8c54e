#include "tests/net/scene.h"
#include "tests/support/rows.h"
#include "tests/support/systemproxy.h"

#include <QtTest>

/// What becomes of an answer that is not the plain one: odd but good answers are used, bad ones are a network
/// error.
class TestAnswers : public QObject
{
    Q_OBJECT

private slots:
    void init() { scene.reset(); }
    void bad_data();
    void bad();
    void nobodyListens_data() { addRequests(); }
    void nobodyListens();
    void good_data();
    void good();

private:
    Scene scene;
};

void TestAnswers::bad_data()
{
    const Rows<Request, Answer> rows("request", "answer");
    const QByteArray text(100, 'x');
    const QByteArray promise = announced(1000, text);
    const QByteArray openChunk = "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n64\r\n" + text;
    for (const Request request : everyRequest) {
        const auto row = [&](const char* name, const Answer& answer) {
            rows(nameOf(request) + ", " + name, request, answer);
        };
        row("body cut short", {{promise}});
        row("reset in mid body", {{promise}, End::reset});
        row("cut between two chunks", {{openChunk + "\r\n"}});
        row("cut within a chunk", {{openChunk.chopped(10)}});
        row("cut within the head", {{promise.left(30)}});
        row("closed without a word", {{}});
        row("reset without a word", {{}, End::reset});
        row("garbage instead of a status line", {{"\x01\x02garbage\xff\r\n\r\n" + text}});
        row("another protocol", {{"SSH-2.0-server\r\n"}});
        row("status that is no number", {{"HTTP/1.1 abc OK\r\n\r\n" + text}});
        row("204", {{"HTTP/1.1 204 No Content\r\n\r\n"}, End::keepOpen});
        row("206", {{httpAnswer("206 Partial Content", text, {"Content-Range: bytes 0-99/1000"})}});
        row("201", {{httpAnswer("201 Created", text)}});
        row("302 without an address", {{httpAnswer("302 Found", text)}});
        row("304", {{"HTTP/1.1 304 Not Modified\r\n\r\n"}, End::keepOpen});
        row("401, credentials asked",
            {{httpAnswer("401 Unauthorized", text, {"WWW-Authenticate: Basic realm=\"x\""})}});
        row("407, a proxy asks", {{httpAnswer("407 Proxy Authentication Required", text,
                                              {"Proxy-Authenticate: Basic realm=\"x\""})}});
        row("403", {{httpAnswer("403 Forbidden", text)}});
        row("404", {{httpAnswer("404 Not Found", text)}});
        row("500", {{httpAnswer("500 Internal Server Error", text)}});
        row("503", {{httpAnswer("503 Service Unavailable", "")}, End::keepOpen});
    }
}

void TestAnswers::bad()
{
    QFETCH(Request, request);
    QFETCH(Answer, answer);
#ifdef Q_OS_WIN
    if (answer.end == End::reset && answer.pieces.isEmpty())
        QSKIP("now and then Wine 8 does not tell of a reset that comes before any byte");
#endif
    scene.server.setAnswer(Scene::path(request), answer);
    scene.ask(request);
    QTRY_VERIFY(scene.rests(scene.networkError(request).size()));
    QCOMPARE(scene.journal->events, scene.networkError(request));
    QVERIFY(scene.reply() != nullptr);
    QVERIFY(!scene.clock().isActive());
    for (const QByteArray& head : scene.server.requests()) // a dropped connection may be tried once more
        QVERIFY(!head.contains("Authorization"));
}

void TestAnswers::nobodyListens()
{
    QFETCH(Request, request);
    RawServer closed;
    setSystemProxy(closed.address({}));
    closed.stopListening();
    scene.ask(request, closed);
    const bool refused = QTest::qWaitFor([this] { return scene.rests(2); }, limits::hangMs());
    setSystemProxy(scene.server.address({}));
    QVERIFY(refused);
    QCOMPARE(scene.journal->events, scene.networkError(request));
}

void TestAnswers::good_data()
{
    const Rows<Request, Answer> rows("request", "answer");
    QByteArrayList manyHeaders;
    for (int i = 0; i < 500; ++i)
        manyHeaders.append("X-Filler: " + QByteArray(100, 'x'));
    const QByteArray log = "better";
    const QByteArray text = scene.catalogue({{"HB4Ver", "23"}});
    for (const Request request : everyRequest) {
        if (request == Request::image)
            continue; // what is stored of an image has tests of its own
        const auto row = [&](const char* name, const Answer& answer) {
            rows(nameOf(request) + ", " + name, request, answer);
        };
        const QByteArray& body = request == Request::catalogue ? text : log;
        const QByteArray packed = gzip(body);
        row("drop by drop", {drops(httpAnswer("200 OK", body)), End::keepOpen});
        row("chunked", {{inChunks(body, 5)}, End::keepOpen});
        row("chunked, drop by drop", {drops(inChunks(body, 3)), End::keepOpen});
        row("gzip", ok(packed, {"Content-Encoding: gzip"}));
        row("gzip, drop by drop",
            {drops(httpAnswer("200 OK", packed, {"Content-Encoding: gzip"})), End::keepOpen});
        row("deflate", ok(qCompress(body).mid(4), {"Content-Encoding: deflate"}));
        row("more than announced", {{httpAnswer("200 OK", body) + "and more"}});
        row("no length, then closed", {{unannounced(body)}});
        row("HTTP 1.0", {{"HTTP/1.0 200 OK\r\n\r\n" + body}});
        row("bare line ends in the head",
            {{"HTTP/1.1 200 OK\nContent-Length: " + QByteArray::number(body.size()) + "\n\n" + body}});
        row("as text/html", ok(body, {"Content-Type: text/html"}));
        row("many headers", ok(body, manyHeaders));
    }
}

void TestAnswers::good()
{
    QFETCH(Request, request);
    QFETCH(Answer, answer);
    scene.server.setAnswer(Scene::path(request), answer);
    scene.ask(request);
    const QMap<Request, QStringList> outcome{
        {Request::catalogue, told::upToDate()},
        {Request::changeLog, told::offer()},
        {Request::mainChangeLog, told::updaterOffer("better")},
    };
    QTRY_COMPARE(scene.journal->events, outcome[request]);
    QVERIFY(!scene.clock().isActive());
}

QTEST_GUILESS_MAIN(TestAnswers)
#include "tst_answers.moc"
