#include "base/sizelimit.h"
#include "net/catalogue.h"
#include "tests/support/rawserver.h"
#include "tests/support/rows.h"
#include "tests/support/selfsigned.h"
#include "vendor/fetcher.h"

#include <QtTest>

namespace {

constexpr auto path = "/file";
constexpr int patient = 0x7FFFFFFF; ///< ms of silence

using catalogue::digestOf;

/// The kinds of what is found about a file, asked for under this key.
QStringList kindsOf(const Fetched& fetched, const catalogue::Entries& entries = {})
{
    QStringList kinds;
    for (const Finding& finding : checks::ofFetched(fetched, entries))
        kinds.append(finding.kind);
    return kinds;
}

} // namespace

class TestFetcher : public QObject
{
    Q_OBJECT

private slots:
    void init() { server.clear(); }
    void asksAsTheProgram();
    void tells_data();
    void tells();
    void image_data();
    void image();
    void changeLogMayBeAnything();
    void certificate();
    void untrustedServer_data();
    void untrustedServer();
    void unreachable();
    void silence();
    void endless();
    void fourAtOnce();
    void stops();
    void wantsAll();
    void wantsWhatCanBeAskedFor();

private:
    static Fetched fetch(const RawServer& whom, bool isImage = true)
    {
        return Fetcher(patient).fetch({{"HB4Bin", whom.address(path), isImage}}).first();
    }

    RawServer server;
};

void TestFetcher::asksAsTheProgram()
{
    server.setAnswer(path, ok("x"));
    QVERIFY(fetch(server).isAnswer);
    QVERIFY(server.requests().first().contains("\r\nUser-Agent: MyOwnBrowser 1.0\r\n"));
}

void TestFetcher::tells_data()
{
    const Rows<QByteArray, int, QByteArray, QString, QString, bool> row("answer", "status", "body", "type",
                                                                        "encoding", "isAnswer");
    const QByteArray body("image");
    row("good", httpAnswer("200 OK", body), 200, body, "", "", true);
    row("empty", httpAnswer("200 OK", {}), 200, {}, "", "", true);
    row("type", httpAnswer("200 OK", body, {"Content-Type: text/html; charset=x"}), 200, body,
        "text/html; charset=x", "", true);
    row("encoding", httpAnswer("200 OK", body, {"Content-Encoding: br"}), 200, body, "", "br", true);
    row("missing", httpAnswer("404 Not Found", "no"), 404, "no", "", "", false);
    row("no content", httpAnswer("204 No Content", {}), 204, {}, "", "", false);
    row("chunks", inChunks(body, 2), 200, body, "", "", true);
    row("cut short", httpHead({"HTTP/1.1 200 OK", "Content-Length: 9"}) + body, 200, body, "", "", false);
}

void TestFetcher::tells()
{
    QFETCH(QByteArray, answer);
    QFETCH(QByteArray, body);
    QFETCH(bool, isAnswer);
    server.setAnswer(path, {{answer}});
    const Fetched fetched = fetch(server, false);
    QTEST(fetched.status, "status");
    QTEST(fetched.type, "type");
    QTEST(fetched.encoding, "encoding");
    QCOMPARE(fetched.isAnswer, isAnswer);
    QCOMPARE(kindsOf(fetched), isAnswer ? QStringList() : QStringList("no-answer"));
    if (!isAnswer)
        return;
    QCOMPARE(fetched.size, qint64(body.size()));
    QCOMPARE(QString(fetched.digest), digestOf(body));
}

void TestFetcher::image_data()
{
    const Rows<QByteArray, QString, QStringList> row("answer", "digest", "kinds");
    const QByteArray body("image");
    const QByteArray good = httpAnswer("200 OK", body);
    row("good", good, "", {});
    row("good digest", good, digestOf(body), {});
    row("good digest in upper case", good, digestOf(body).toUpper(), {});
    row("wrong digest", good, digestOf("other"), {"wrong-digest"});
    row("a malformed digest is the catalogue's own matter", good, "12", {});
    row("page", httpAnswer("200 OK", body, {"Content-Type: Text/HTML"}), "", {"no-image"});
    row("encoded", httpAnswer("200 OK", body, {"Content-Encoding: br"}), "", {"no-image"});
    row("encoded as nothing", httpAnswer("200 OK", body, {"Content-Encoding: identity"}), "", {});
    row("empty", httpAnswer("200 OK", {}), "", {"empty-image"});
    row("missing", httpAnswer("404 Not Found", "no"), digestOf(body), {"no-answer"});
    const QByteArray type("Content-Type: application/octet-stream");
    row("largest that is not reported", httpAnswer("200 OK", QByteArray(15000000, 'x'), {type}), "", {});
    row("reported", httpAnswer("200 OK", QByteArray(15000001, 'x'), {type}), "", {"large-answer"});
}

void TestFetcher::image()
{
    QFETCH(QByteArray, answer);
    QFETCH(QString, digest);
    server.setAnswer(path, {{answer}});
    QTEST(kindsOf(fetch(server), {{"HB4Sha256", digest}}), "kinds");
}

void TestFetcher::changeLogMayBeAnything()
{
    server.setAnswer(path, ok({}, {"Content-Type: text/html", "Content-Encoding: br"}));
    QCOMPARE(kindsOf(fetch(server, false)), QStringList());
}

/// The program ignores what is wrong with a certificate; the vendor is told.
void TestFetcher::certificate()
{
    Fetched fetched;
    fetched.wanted = {"HB4ChangeLog", "http://h/l", false};
    fetched.isAnswer = true;
    QVERIFY(checks::ofFetched(fetched, {}).isEmpty());
    fetched.certificateFault = "it has expired";
    const Findings found = checks::ofFetched(fetched, {});
    QCOMPARE(found.size(), 1);
    QVERIFY(found.first().severity == Severity::note);
    QCOMPARE(found.first().key, QString("HB4ChangeLog"));
    QCOMPARE(found.first().text, QString("http://h/l: certificate not valid: it has expired"));
}

void TestFetcher::untrustedServer_data()
{
    QTest::addColumn<bool>("isRedirected");
    QTest::newRow("asked over https") << false;
    QTest::newRow("asked over http, which leads to https") << true;
}

/// A real handshake with a certificate that nobody vouches for.
void TestFetcher::untrustedServer()
{
    QFETCH(bool, isRedirected);
    const auto tls = selfSigned();
    QVERIFY2(tls.has_value(), "needs the package openssl");
    RawServer secure(tls);
    secure.setAnswer(path, ok("image"));
    server.setAnswer(path, {{httpAnswer("302 Found", {}, {"Location: " + secure.address(path).toUtf8()})}});
    const Fetched fetched = fetch(isRedirected ? server : secure);
    QVERIFY2(fetched.isAnswer, qPrintable(fetched.failure));
    QCOMPARE(QString(fetched.digest), digestOf("image"));
    QCOMPARE(kindsOf(fetched), QStringList("bad-certificate"));
}

void TestFetcher::unreachable()
{
    RawServer closed;
    closed.stopListening();
    const Fetched fetched = fetch(closed);
    QCOMPARE(fetched.status, 0);
    QVERIFY(!fetched.failure.isEmpty());
    QCOMPARE(kindsOf(fetched), QStringList("no-answer"));
}

void TestFetcher::silence()
{
    RawServer silent;
    silent.setAnswer(
        path, {{httpHead({"HTTP/1.1 200 OK", "Content-Length: 2"}), "x"}, RawServer::End::close, true});
    const Fetched fetched = Fetcher(1000).fetch({{"HB4Bin", silent.address(path), true}}).first();
    QCOMPARE(fetched.failure, QString("nothing received for 1 s"));
    QVERIFY(!fetched.isAnswer);
}

void TestFetcher::endless()
{
    server.setAnswer(path, ::endless(QByteArray(1024 * 1024, 'x')));
    const Fetched fetched = fetch(server);
    QVERIFY(!fetched.isAnswer);
    QCOMPARE(fetched.failure, QString("more than 67108864 bytes"));
    QVERIFY(fetched.size > sizeLimit);
}

/// Holds every answer back until four have been requested, and checks that no fifth request comes.
void TestFetcher::fourAtOnce()
{
    QVector<Wanted> wanted;
    for (int number = 0; number < 9; ++number) {
        const QString each = "/" + QString::number(number);
        wanted.append({"HB4Bin", server.address(each), true});
        const QByteArray answer = httpAnswer("200 OK", QByteArray::number(number));
        server.setAnswer(each, inTwoSteps(answer, answer.size() - 1));
    }
    int ended = 0;
    int most = 0;
    Fetcher fetcher(patient, [&](int now, int, qint64) { ended = now; });
    QTimer holding;
    connect(&holding, &QTimer::timeout, this, [&] {
        const int open = server.requests().size() - ended;
        most = qMax(most, open);
        if (open >= qMin(4, wanted.size() - ended))
            server.goOn();
    });
    holding.start(20); // time for a fifth request
    const QVector<Fetched> all = fetcher.fetch(wanted);
    QCOMPARE(most, 4);
    for (int number = 0; number < all.size(); ++number) {
        QCOMPARE(all[number].wanted.url, wanted[number].url);
        QCOMPARE(QString(all[number].digest), digestOf(QByteArray::number(number)));
    }
}

void TestFetcher::stops()
{
    server.setAnswer(path, {{"HTTP/1.1 200 OK\r\n", "\r\n"}, RawServer::End::close, true});
    Fetcher fetcher(patient);
    QTimer asked;
    connect(&asked, &QTimer::timeout, this, [&] {
        if (!server.requests().isEmpty())
            fetcher.stop();
    });
    asked.start(1);
    const QVector<Wanted> wanted(6, {"HB4Bin", server.address(path), true});
    const QVector<Fetched> all = fetcher.fetch(wanted);
    QVERIFY(fetcher.isStopped());
    QCOMPARE(all.size(), 6);
    QCOMPARE(all.first().failure, QString("interrupted"));
    for (const Fetched& one : all)
        QVERIFY(!one.isAnswer);
}

void TestFetcher::wantsAll()
{
    const QVector<Wanted> wanted = wantedBy({{"MainChangeLog", "https://h/m"},
                                             {"MacMainBin", "https://h/never"},
                                             {"PLT70Bin", "http://h/p"},
                                             {"HB4Bin", "http://h/b"},
                                             {"HB4ChangeLog", "http://h/l"}});
    QStringList told;
    for (const Wanted& one : wanted)
        told.append(one.key + ' ' + one.url + (one.isImage ? " image" : ""));
    QCOMPARE(told, QStringList({"MainChangeLog http://h/m", "HB4ChangeLog http://h/l",
                                "HB4Bin http://h/b image", "PLT70Bin http://h/p image"}));
}

void TestFetcher::wantsWhatCanBeAskedFor()
{
    QVERIFY(wantedBy({{"HB4Bin", "http://h"}, {"HB4ChangeLog", ""}}).isEmpty());
}

QTEST_GUILESS_MAIN(TestFetcher)
#include "tst_fetcher.moc"
