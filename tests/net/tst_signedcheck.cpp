#include "tests/net/signedscene.h"
#include "tests/support/rows.h"
#include "tests/support/texts.h"

#include <QtTest>

namespace {

using Changes = CatalogueEntries;

const QStringList noDigest =
    QStringList{told::log("The catalogue gives no SHA-256 of the image")} + told::incomplete();
const QStringList noSignature{told::log("The catalogue's signature could not be downloaded"),
                              told::problem()};

QStringList notGenuine(const QString& fault)
{
    return {told::log("The catalogue is not genuine: " + fault),
            told::signal("youHaveProblem", {text::notGenuine, text::nothingChanged})};
}

const QString differs = "the signature is not that of this file";
const QString tooLarge = "the signature file is too large";
const QString fewLines = "the signature file has fewer than four lines";

Answer redirectTo(const char* path)
{
    return {{httpAnswer("302 Found", "moved", {QByteArray("Location: ") + path})}};
}

QByteArray withCrlf(QByteArray text)
{
    return text.replace("\n", "\r\n");
}

} // namespace
Q_DECLARE_METATYPE(Changes)

/// The check of a program with a key: nothing counts before a good signature.
class TestSignedCheck : public QObject
{
    Q_OBJECT

private slots:
    void init() { scene.reset(); }
    void requestBytes();
    void outcome_data();
    void outcome();
    void goodAnswers_data();
    void goodAnswers();
    void refused_data();
    void refused();
    void signatureBeyondTheLimitInTwoPieces();
    void alteredCatalogue();
    void otherAnswersByTheServer_data();
    void otherAnswersByTheServer();
    void noCatalogueNoSignature();
    void silenceIsReported();
    void largeCatalogueIsReported();

private:
    SignedScene scene;
};

void TestSignedCheck::requestBytes()
{
    scene.publish(scene.signable({{"HB4Ver", "23"}}));
    scene.check(1);
    QCOMPARE(scene.server.paths(), (QStringList{cataloguePath, signaturePath}));
    QByteArray second = scene.server.requests().first();
    second.replace("versions.txt ", "versions.txt.minisig ");
    QCOMPARE(scene.server.requests().last(), second);
}

void TestSignedCheck::outcome_data()
{
    const Rows<Changes, QString, QStringList> row("changes", "version", "events");
    row("newer firmware", {}, "23", told::offer());
    row("same firmware", {}, "27", told::upToDate());
    row("an old catalogue", {{"HB4Ver", "20"}}, "23", told::upToDate());
    row("newer updater", {{"MainVer", updater::next}}, "23", told::updaterOffer());
    row("digest in capital letters", {{"HB4Sha256", QString(64, 'A')}}, "23", told::offer());
    row("no digest", {{"HB4Sha256", {}}}, "23", noDigest);
    row("no digest, same firmware", {{"HB4Sha256", {}}}, "27", noDigest);
    row("no digest, newer updater", {{"HB4Sha256", {}}, {"MainVer", updater::next}}, "23", noDigest);
    row("empty digest", {{"HB4Sha256", ""}}, "23", noDigest);
    row("malformed digest", {{"HB4Sha256", QString(63, 'a')}}, "23", noDigest);
    row("digest of another model alone", {{"HB4Sha256", {}}, {"HB2Sha256", QString(64, 'a')}}, "23",
        noDigest);
    row("no image address", {{"HB4Bin", {}}}, "23", told::incomplete());
}

void TestSignedCheck::outcome()
{
    QFETCH(Changes, changes);
    QFETCH(QString, version);
    QFETCH(QStringList, events);
    scene.publish(scene.signable(changes));
    scene.checker->setCurVersion(version);
    scene.check(events.size());
    QCOMPARE(scene.journal->events, events);
}

void TestSignedCheck::goodAnswers_data()
{
    const Rows<Answer, Answer> row("catalogueAnswer", "signatureAnswer");
    const QByteArray plain = scene.signable();
    const QByteArray signature = scene.signer.sign(plain);
    row("ED", ok(plain), ok(signature));
    row("Ed", ok(plain), ok(scene.signer.sign(plain, Signer::Kind::whole)));
    row("catalogue with CRLF", ok(withCrlf(plain)), ok(scene.signer.sign(withCrlf(plain))));
    row("signature with CRLF", ok(plain), ok(withCrlf(signature)));
    row("signature file of 16384 bytes", ok(plain), ok(signature.leftJustified(16 * 1024, '\n')));
    row("drop by drop", {drops(httpAnswer("200 OK", plain)), End::keepOpen},
        {drops(httpAnswer("200 OK", signature)), End::keepOpen});
    row("in chunks", {{inChunks(plain, 11)}, End::keepOpen}, {{inChunks(signature, 11)}, End::keepOpen});
    row("compressed", ok(gzip(plain), {"Content-Encoding: gzip"}),
        ok(gzip(signature), {"Content-Encoding: gzip"}));
    row("of any type", ok(plain, {"Content-Type: text/html"}), ok(signature, {"Content-Type: text/html"}));
    row("redirected", redirectTo("/new/versions.txt"), redirectTo("/new/signature"));
    row("connection closed in between", {{httpAnswer("200 OK", plain)}}, {{httpAnswer("200 OK", signature)}});
}

void TestSignedCheck::goodAnswers()
{
    QFETCH(Answer, catalogueAnswer);
    QFETCH(Answer, signatureAnswer);
    const QByteArray plain = scene.signable();
    scene.server.setAnswer("/new/versions.txt", ok(plain));
    scene.server.setAnswer("/new/signature", ok(scene.signer.sign(plain)));
    scene.server.setAnswer(cataloguePath, catalogueAnswer);
    scene.server.setAnswer(signaturePath, signatureAnswer);
    scene.check(1);
    QCOMPARE(scene.journal->events, told::offer());
    QVERIFY(!scene.clock().isActive());
}

void TestSignedCheck::refused_data()
{
    const Rows<Answer, Answer, QString> row("catalogueAnswer", "signatureAnswer", "fault");
    const QByteArray plain = scene.signable();
    const QByteArray signature = scene.signer.sign(plain);
    const QByteArray page = "<html>\n<body>\nPlease sign in.\n</body>\n</html>\n";
    row("catalogue with another version", ok(scene.signable({{"HB4Ver", "28"}})), ok(signature), differs);
    row("catalogue with a line more", ok(plain + "HB4Ver=28\n"), ok(signature), differs);
    row("catalogue with other line ends", ok(withCrlf(plain)), ok(signature), differs);
    row("signed without its carriage returns", ok(withCrlf(plain)), ok(signature), differs);
    row("empty catalogue", ok(""), ok(signature), differs);
    row("redirected to other bytes", redirectTo("/other"), ok(signature), differs);
    row("signature of the compressed catalogue", ok(gzip(plain), {"Content-Encoding: gzip"}),
        ok(scene.signer.sign(gzip(plain))), differs);
    row("signature by a stranger", ok(plain), ok(scene.stranger.sign(plain)),
        "the signature was made with another key");
    row("the catalogue once more", ok(plain), ok(plain), "the signature is not 74 bytes in base64");
    row("a page", ok(plain), ok(page, {"Content-Type: text/html"}),
        "the signature is not 74 bytes in base64");
    row("empty signature", ok(plain), ok(""), fewLines);
    row("half a signature", ok(plain), ok(signature.left(150)), fewLines);
    row("signature of 16385 bytes", ok(plain), ok(signature.leftJustified(16 * 1024 + 1, '\n')), tooLarge);
    row("signature without end", ok(plain), endless(QByteArray(10000, '\n')), tooLarge);
    row("cut short, but too large by then", ok(plain), {{announced(30000, QByteArray(20000, 'x'))}},
        tooLarge);
}

void TestSignedCheck::refused()
{
    QFETCH(Answer, catalogueAnswer);
    QFETCH(Answer, signatureAnswer);
    QFETCH(QString, fault);
    scene.server.setAnswer("/other", ok(scene.signable({{"HB4Ver", "28"}})));
    scene.server.setAnswer(cataloguePath, catalogueAnswer);
    scene.server.setAnswer(signaturePath, signatureAnswer);
    scene.check(2);
    QCOMPARE(scene.journal->events, notGenuine(fault));
    QVERIFY(!scene.server.paths().contains(changeLogPath));
    QVERIFY2(scene.knowsNoImage(), "something is taken over");
    QVERIFY(!scene.clock().isActive());
}

/// It is good as far as the limit.
void TestSignedCheck::signatureBeyondTheLimitInTwoPieces()
{
    const QByteArray plain = scene.signable();
    const QByteArray file = scene.signer.sign(plain).leftJustified(16 * 1024 + 1, '\n');
    scene.server.setAnswer(cataloguePath, ok(plain));
    const QByteArray answer = httpAnswer("200 OK", file);
    scene.server.setAnswer(signaturePath, inTwoSteps(answer, answer.size() - 1));
    scene.checker->checkUpdate();
    QTRY_COMPARE(scene.received(), qint64(file.size() - 1));
    QVERIFY(scene.checker->isBusy());
    scene.server.goOn();
    QTRY_VERIFY(scene.rests(2));
    QCOMPARE(scene.journal->events, notGenuine(tooLarge));
}

/// Whatever bit of a signed catalogue is another.
void TestSignedCheck::alteredCatalogue()
{
    const QByteArray plain = "HB4Ver=99\n";
    scene.server.setAnswer(signaturePath, ok(scene.signer.sign(plain)));
    for (int bit = 0; bit < 8 * plain.size(); ++bit) {
        scene.server.setAnswer(cataloguePath, ok(withBitFlipped(plain, bit)));
        scene.check(2);
        QCOMPARE(scene.journal->events, notGenuine(differs));
    }
}

void TestSignedCheck::otherAnswersByTheServer_data()
{
    QTest::addColumn<Answer>("answer");
    const QByteArray signature = scene.signer.sign(scene.signable());
    const QByteArray page(20000, 'x');
    QTest::newRow("404") << Answer{{httpAnswer("404 Not Found", "no")}};
    QTest::newRow("404 with a large page") << Answer{{httpAnswer("404 Not Found", page)}};
    QTest::newRow("404 with the signature") << Answer{{httpAnswer("404 Not Found", signature)}};
    QTest::newRow("500") << Answer{{httpAnswer("500 Internal Server Error", "no")}};
    QTest::newRow("201 with the signature") << Answer{{httpAnswer("201 Created", signature)}};
    QTest::newRow("201 with a large page") << Answer{{httpAnswer("201 Created", page)}};
    QTest::newRow("204") << Answer{{"HTTP/1.1 204 No Content\r\n\r\n"}, End::keepOpen};
    QTest::newRow("302 without an address") << Answer{{httpAnswer("302 Found", signature)}};
    QTest::newRow("redirected in a circle") << redirectTo(signaturePath);
    QTest::newRow("cut short") << Answer{{announced(999, signature)}};
    QTest::newRow("reset") << Answer{{announced(999, signature)}, End::reset};
    QTest::newRow("closed without a word") << Answer{{}};
    QTest::newRow("another protocol") << Answer{{"SSH-2.0-server\r\n"}};
}

/// No answer of status 200 is a problem of the network.
void TestSignedCheck::otherAnswersByTheServer()
{
    QFETCH(Answer, answer);
    scene.server.setAnswer(cataloguePath, ok(scene.signable()));
    scene.server.setAnswer(signaturePath, answer);
    scene.check(2);
    QCOMPARE(scene.journal->events, noSignature);
    QVERIFY(scene.knowsNoImage());
    QVERIFY(!scene.clock().isActive());
}

void TestSignedCheck::noCatalogueNoSignature()
{
    scene.publish(scene.signable());
    scene.server.setAnswer(cataloguePath, {{httpAnswer("404 Not Found", "no")}});
    scene.check(2);
    QCOMPARE(scene.journal->events, scene.networkError(Request::catalogue));
    QCOMPARE(scene.server.paths(), QStringList{cataloguePath});
}

void TestSignedCheck::silenceIsReported()
{
    scene.server.setAnswer(cataloguePath, ok(scene.signable()));
    scene.server.setAnswer(signaturePath, silence());
    scene.checker->checkUpdate();
    QTRY_COMPARE(scene.server.requests().size(), 2);
    QVERIFY(scene.checker->isBusy());
    QVERIFY(scene.clock().isActive());
    QCOMPARE(scene.clock().interval(), 30000);
    scene.letTheClockFire();
    QCOMPARE(scene.journal->events, told::exitSlot());
}

void TestSignedCheck::largeCatalogueIsReported()
{
    scene.publish(scene.signable().leftJustified(10246, ' '));
    scene.check(3);
    QCOMPARE(scene.journal->events, told::exitSlot() + told::offer());
}

QTEST_GUILESS_MAIN(TestSignedCheck)
#include "tst_signedcheck.moc"
