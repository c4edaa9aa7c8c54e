#include "net/catalogue.h"
#include "tests/net/scene.h"
#include "tests/support/imagefiles.h"
#include "tests/support/signer.h"
#include "tests/support/testkey.h"
#include "tests/support/texts.h"

#include <QTimer>
#include <QtTest>

Q_DECLARE_METATYPE(RawServer::Answer)

namespace {

using Answer = RawServer::Answer;
using Changes = CatalogueEntries;
using End = RawServer::End;

constexpr auto signaturePath = "/wp-content/uploads/versions.txt.minisig";

const QString upToDate = told::signal("youHaveLastVersion");
const QString offer = told::signal("findNewVersion", {"27", "better"});
const QString updaterOffer = told::signal("findMainNewVersion", {"12", "new look"});
const QStringList incomplete{told::log("Can't find info about version and binary file"), told::problem()};
const QStringList noDigest =
    QStringList{told::log("The catalogue gives no SHA-256 of the image")} + incomplete;
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
    void init();
    void requestBytes();
    void outcome_data();
    void outcome();
    void goodAnswers_data();
    void goodAnswers();
    void refused_data();
    void refused();
    void alteredCatalogue();
    void otherAnswersByTheServer_data();
    void otherAnswersByTheServer();
    void noCatalogueNoSignature();
    void silenceIsReported();
    void failedCheckLeavesNothing_data();
    void failedCheckLeavesNothing();
    void onlyTheLatestCheckCounts();
    void checkDuringADownload();
    void largeCatalogueIsReported();

private:
    [[nodiscard]] QByteArray catalogue(const Changes& changes = {}) const;
    void publish(const QByteArray& bytes, Signer::Kind kind = Signer::Kind::digest);
    void check(qsizetype events);

    Signer signer;
    Signer stranger;
    Scene scene;
};

void TestSignedCheck::init()
{
    testkey::set(signer.publicKey());
    scene.reset();
    scene.server.setAnswer(changeLogPath, ok("better"));
    scene.server.setAnswer(mainChangeLogPath, ok("new look"));
}

/// With the digest that such a program demands.
QByteArray TestSignedCheck::catalogue(const Changes& changes) const
{
    Changes all{{"HB4Sha256", QString(64, 'a')}};
    for (auto change = changes.begin(); change != changes.end(); ++change)
        all[change.key()] = change.value();
    return scene.catalogue(all);
}

void TestSignedCheck::publish(const QByteArray& bytes, Signer::Kind kind)
{
    scene.server.setAnswer(cataloguePath, ok(bytes));
    scene.server.setAnswer(signaturePath, ok(signer.sign(bytes, kind)));
}

void TestSignedCheck::check(qsizetype events)
{
    scene.journal->events.clear();
    scene.checker->checkUpdate();
    QVERIFY(
        QTest::qWaitFor([&] { return scene.rests(events); }, limits::hangMs())); // looks more often than QTRY
}

void TestSignedCheck::requestBytes()
{
    publish(catalogue({{"HB4Ver", "23"}}));
    check(1);
    QCOMPARE(scene.server.paths(), (QStringList{cataloguePath, signaturePath}));
    QByteArray second = scene.server.requests().first();
    second.replace("versions.txt ", "versions.txt.minisig ");
    QCOMPARE(scene.server.requests().last(), second);
}

void TestSignedCheck::outcome_data()
{
    QTest::addColumn<Changes>("changes");
    QTest::addColumn<QString>("version");
    QTest::addColumn<QStringList>("events");
    const auto row = [](const char* name, const Changes& changes, const char* version,
                        const QStringList& events) { QTest::newRow(name) << changes << version << events; };
    row("newer firmware", {}, "23", {offer});
    row("same firmware", {}, "27", {upToDate});
    row("an old catalogue", {{"HB4Ver", "20"}}, "23", {upToDate});
    row("newer updater", {{"MainVer", "12"}}, "23", {updaterOffer});
    row("digest in capital letters", {{"HB4Sha256", QString(64, 'A')}}, "23", {offer});
    row("no digest", {{"HB4Sha256", {}}}, "23", noDigest);
    row("no digest, same firmware", {{"HB4Sha256", {}}}, "27", noDigest);
    row("no digest, newer updater", {{"HB4Sha256", {}}, {"MainVer", "12"}}, "23", noDigest);
    row("empty digest", {{"HB4Sha256", ""}}, "23", noDigest);
    row("malformed digest", {{"HB4Sha256", QString(63, 'a')}}, "23", noDigest);
    row("digest of another model alone", {{"HB4Sha256", {}}, {"HB2Sha256", QString(64, 'a')}}, "23",
        noDigest);
    row("no image address", {{"HB4Bin", {}}}, "23", incomplete);
}

void TestSignedCheck::outcome()
{
    QFETCH(Changes, changes);
    QFETCH(QString, version);
    QFETCH(QStringList, events);
    publish(catalogue(changes));
    scene.checker->setCurVersion(version);
    check(events.size());
    QCOMPARE(scene.journal->events, events);
}

void TestSignedCheck::goodAnswers_data()
{
    QTest::addColumn<Answer>("catalogueAnswer");
    QTest::addColumn<Answer>("signatureAnswer");
    const QByteArray plain = catalogue();
    const QByteArray signature = signer.sign(plain);
    const auto row = [](const char* name, const Answer& first, const Answer& second) {
        QTest::newRow(name) << first << second;
    };
    row("ED", ok(plain), ok(signature));
    row("Ed", ok(plain), ok(signer.sign(plain, Signer::Kind::whole)));
    row("catalogue with CRLF", ok(withCrlf(plain)), ok(signer.sign(withCrlf(plain))));
    row("signature with CRLF", ok(plain), ok(withCrlf(signature)));
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
    const QByteArray plain = catalogue();
    scene.server.setAnswer("/new/versions.txt", ok(plain));
    scene.server.setAnswer("/new/signature", ok(signer.sign(plain)));
    scene.server.setAnswer(cataloguePath, catalogueAnswer);
    scene.server.setAnswer(signaturePath, signatureAnswer);
    check(1);
    QCOMPARE(scene.journal->events, QStringList{offer});
    QCOMPARE(scene.state().newVersion, QString("27"));
    QCOMPARE(scene.state().mainVersion, QString("11"));
    QVERIFY(!scene.clock().isActive());
}

void TestSignedCheck::refused_data()
{
    QTest::addColumn<Answer>("catalogueAnswer");
    QTest::addColumn<Answer>("signatureAnswer");
    QTest::addColumn<QString>("fault");
    const QByteArray plain = catalogue();
    const QByteArray signature = signer.sign(plain);
    const QByteArray page = "<html>\n<body>\nPlease sign in.\n</body>\n</html>\n";
    const auto row = [](const char* name, const Answer& first, const Answer& second, const QString& fault) {
        QTest::newRow(name) << first << second << fault;
    };
    row("catalogue with another version", ok(catalogue({{"HB4Ver", "28"}})), ok(signature), differs);
    row("catalogue with a line more", ok(plain + "HB4Ver=28\n"), ok(signature), differs);
    row("catalogue with other line ends", ok(withCrlf(plain)), ok(signature), differs);
    row("signed without its carriage returns", ok(withCrlf(plain)), ok(signature), differs);
    row("empty catalogue", ok(""), ok(signature), differs);
    row("redirected to other bytes", redirectTo("/other"), ok(signature), differs);
    row("signature of the compressed catalogue", ok(gzip(plain), {"Content-Encoding: gzip"}),
        ok(signer.sign(gzip(plain))), differs);
    row("signature by a stranger", ok(plain), ok(stranger.sign(plain)),
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
    scene.server.setAnswer("/other", ok(catalogue({{"HB4Ver", "28"}})));
    scene.server.setAnswer(cataloguePath, catalogueAnswer);
    scene.server.setAnswer(signaturePath, signatureAnswer);
    check(2);
    QCOMPARE(scene.journal->events, notGenuine(fault));
    QVERIFY2(scene.state().newVersion.isEmpty() && scene.state().binUrl.isEmpty() &&
                 scene.state().imageDigest.isEmpty(),
             "nothing is taken over");
    QCOMPARE(scene.state().mainBinUrl, QString("http://upd.test"));
    QVERIFY(!scene.server.paths().contains(changeLogPath));
    QVERIFY(!scene.clock().isActive());
}

/// Whatever bit of a signed catalogue is another.
void TestSignedCheck::alteredCatalogue()
{
    const QByteArray plain = "HB4Ver=99\n";
    scene.server.setAnswer(signaturePath, ok(signer.sign(plain)));
    for (int bit = 0; bit < 8 * plain.size(); ++bit) {
        scene.server.setAnswer(cataloguePath, ok(withBitFlipped(plain, bit)));
        check(2);
        QCOMPARE(scene.journal->events, notGenuine(differs));
    }
}

void TestSignedCheck::otherAnswersByTheServer_data()
{
    QTest::addColumn<Answer>("answer");
    const QByteArray signature = signer.sign(catalogue());
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
    scene.server.setAnswer(cataloguePath, ok(catalogue()));
    scene.server.setAnswer(signaturePath, answer);
    check(2);
    QCOMPARE(scene.journal->events, noSignature);
    QVERIFY(scene.state().newVersion.isEmpty());
    QVERIFY(!scene.clock().isActive());
}

void TestSignedCheck::noCatalogueNoSignature()
{
    publish(catalogue());
    scene.server.setAnswer(cataloguePath, {{httpAnswer("404 Not Found", "no")}});
    check(2);
    QCOMPARE(scene.journal->events, scene.networkError(Request::catalogue));
    QCOMPARE(scene.server.paths(), QStringList{cataloguePath});
}

void TestSignedCheck::silenceIsReported()
{
    scene.server.setAnswer(cataloguePath, ok(catalogue()));
    scene.server.setAnswer(signaturePath, silence());
    scene.checker->checkUpdate();
    QTRY_COMPARE(scene.server.requests().size(), 2);
    QVERIFY(scene.checker->isBusy());
    QVERIFY(scene.clock().isActive());
    QCOMPARE(scene.clock().interval(), 30000);
    QTimerEvent over(scene.clock().timerId());
    QCoreApplication::sendEvent(&scene.clock(), &over);
    QCOMPARE(scene.journal->events, (QStringList{told::log("UpdateChecker::exitSlot"), told::problem()}));
}

void TestSignedCheck::failedCheckLeavesNothing_data()
{
    QTest::addColumn<Answer>("catalogueAnswer");
    QTest::addColumn<Answer>("signatureAnswer");
    const QByteArray tempting = "HB4Ver=99\n";
    QTest::newRow("catalogue cut short") << Answer{{announced(999, tempting)}} << ok("");
    QTest::newRow("no signature") << ok(tempting) << Answer{{httpAnswer("404 Not Found", "no")}};
    QTest::newRow("bad signature") << ok(tempting) << ok(stranger.sign(tempting));
    QTest::newRow("signed, but incomplete") << ok(tempting) << ok(signer.sign(tempting));
}

/// The next check judges and uses its own bytes alone.
void TestSignedCheck::failedCheckLeavesNothing()
{
    QFETCH(Answer, catalogueAnswer);
    QFETCH(Answer, signatureAnswer);
    scene.server.setAnswer(cataloguePath, catalogueAnswer);
    scene.server.setAnswer(signaturePath, signatureAnswer);
    check(2);
    QVERIFY(!scene.journal->events.contains(offer));
    publish(catalogue());
    check(1);
    QCOMPARE(scene.journal->events, QStringList{offer});
    QCOMPARE(scene.state().newVersion, QString("27"));
}

/// What is left of an earlier check neither ends the later one nor gets into its bytes.
void TestSignedCheck::onlyTheLatestCheckCounts()
{
    const QByteArray old = httpAnswer("200 OK", "HB4Ver=99\n" + catalogue());
    scene.server.setAnswer(cataloguePath, {{old.chopped(20), old.right(20)}, End::keepOpen, true});
    scene.checker->checkUpdate();
    QTRY_VERIFY(!scene.state().infoData.isEmpty());
    const QPointer<QNetworkReply> first = scene.state().reply;
    const QByteArray plain = catalogue();
    const QByteArray answer = httpAnswer("200 OK", plain);
    scene.server.setAnswer(cataloguePath, {{answer.chopped(20), answer.right(20)}, End::keepOpen, true});
    scene.server.setAnswer(signaturePath, ok(signer.sign(plain)));
    scene.checker->checkUpdate();
    QTRY_VERIFY(!scene.state().infoData.isEmpty());
    scene.server.goOn(); // with both, if the first is still there
    QTRY_VERIFY(scene.rests(1));
    QCOMPARE(scene.journal->events, QStringList{offer});
    QTRY_VERIFY(first.isNull());
    QVERIFY(!scene.clock().isActive());
}

/// It drops the image on its way; the next one is judged by the digest of its own catalogue, and no other may
/// be sent.
void TestSignedCheck::checkDuringADownload()
{
    const QString imageName = QCoreApplication::applicationDirPath() + '/' + filename::image;
    QVERIFY(ImageFiles{}.placeAt(imageName));
    const QByteArray first(40000, 'f');
    const QByteArray second(40000, 's');
    publish(catalogue({{"HB4Sha256", ::catalogue::digestOf(first)}}));
    check(1);
    const QByteArray answer = httpAnswer("200 OK", first);
    scene.server.setAnswer(imagePath, {{answer.left(1000), answer.mid(1000)}, End::keepOpen, true});
    scene.checker->onNeedDownloadNewFirmware();
    QTRY_VERIFY(!scene.state().firmwareData.isEmpty());

    publish(catalogue({{"HB4Sha256", ::catalogue::digestOf(second)}}));
    check(1);
    scene.server.goOn();
    QCOMPARE(scene.journal->events, QStringList{offer});
    QVERIFY(!scene.checker->mayBeSent(first) && !scene.checker->mayBeSent(second));
    QCOMPARE(ImageFiles::at(imageName), ImageFiles{});

    scene.journal->events.clear();
    scene.server.setAnswer(imagePath, ok(second));
    scene.checker->onNeedDownloadNewFirmware();
    QTRY_VERIFY(scene.rests(1));
    QCOMPARE(scene.journal->events, QStringList{told::signal("newUpdateFileDownloaded", {"true"})});
    QCOMPARE(ImageFiles::at(imageName).image, second);
    QVERIFY(!scene.checker->mayBeSent(first) && scene.checker->mayBeSent(second));
}

void TestSignedCheck::largeCatalogueIsReported()
{
    publish(catalogue().leftJustified(10246, ' '));
    check(3);
    QCOMPARE(scene.journal->events,
             (QStringList{told::log("UpdateChecker::exitSlot"), told::problem(), offer}));
}

QTEST_GUILESS_MAIN(TestSignedCheck)
#include "tst_signedcheck.moc"
