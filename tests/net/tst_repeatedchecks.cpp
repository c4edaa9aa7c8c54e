#include "net/catalogue.h"
#include "tests/net/signedscene.h"
#include "tests/support/imagefiles.h"
#include "tests/support/rows.h"

#include <QtTest>

/// A program with a key checks again: nothing of an earlier check or download gets into the later one.
class TestRepeatedChecks : public QObject
{
    Q_OBJECT

private slots:
    void init() { scene.reset(); }
    void failedCheckLeavesNothing_data();
    void failedCheckLeavesNothing();
    void onlyTheLatestCheckCounts();
    void checkDuringADownload();

private:
    SignedScene scene;
};

void TestRepeatedChecks::failedCheckLeavesNothing_data()
{
    const Rows<Answer, Answer> row("catalogueAnswer", "signatureAnswer");
    const QByteArray tempting = "HB4Ver=99\n";
    row("catalogue cut short", {{announced(999, tempting)}}, ok(""));
    row("no signature", ok(tempting), {{httpAnswer("404 Not Found", "no")}});
    row("bad signature", ok(tempting), ok(scene.stranger.sign(tempting)));
    row("signed, but incomplete", ok(tempting), ok(scene.signer.sign(tempting)));
}

/// The next check judges and uses its own bytes alone.
void TestRepeatedChecks::failedCheckLeavesNothing()
{
    QFETCH(Answer, catalogueAnswer);
    QFETCH(Answer, signatureAnswer);
    scene.server.setAnswer(cataloguePath, catalogueAnswer);
    scene.server.setAnswer(signaturePath, signatureAnswer);
    scene.check(2);
    QVERIFY(!scene.journal->events.contains(told::offer().first()));
    scene.publish(scene.signable());
    scene.check(1);
    QCOMPARE(scene.journal->events, told::offer());
}

/// What is left of an earlier check neither ends the later one nor gets into its bytes.
void TestRepeatedChecks::onlyTheLatestCheckCounts()
{
    const QByteArray old = httpAnswer("200 OK", "HB4Ver=99\n" + scene.signable());
    scene.server.setAnswer(cataloguePath, inTwoSteps(old, old.size() - 20));
    scene.checker->checkUpdate();
    QTRY_VERIFY(scene.received() > 0);
    const QPointer<QNetworkReply> first = scene.reply();
    const QByteArray plain = scene.signable();
    const QByteArray answer = httpAnswer("200 OK", plain);
    scene.server.setAnswer(cataloguePath, inTwoSteps(answer, answer.size() - 20));
    scene.server.setAnswer(signaturePath, ok(scene.signer.sign(plain)));
    scene.checker->checkUpdate();
    QTRY_VERIFY(scene.received() > 0);
    scene.server.goOn(); // with both, if the first is still there
    QTRY_VERIFY(scene.rests(1));
    QCOMPARE(scene.journal->events, told::offer());
    QTRY_VERIFY(first.isNull());
    QVERIFY(!scene.clock().isActive());
}

/// It drops the image on its way; the next one is judged by the digest of its own catalogue, and no other may
/// be sent.
void TestRepeatedChecks::checkDuringADownload()
{
    QVERIFY(ImageFiles{}.placeAt(programImage()));
    const QByteArray first(40000, 'f');
    const QByteArray second(40000, 's');
    scene.publish(scene.signable({{"HB4Sha256", catalogue::digestOf(first)}}));
    scene.check(1);
    const QByteArray answer = httpAnswer("200 OK", first);
    scene.server.setAnswer(imagePath, inTwoSteps(answer, 1000));
    scene.checker->onNeedDownloadNewFirmware();
    QTRY_VERIFY(scene.received() > 0);

    scene.publish(scene.signable({{"HB4Sha256", catalogue::digestOf(second)}}));
    scene.check(1);
    scene.server.goOn();
    QCOMPARE(scene.journal->events, told::offer());
    QVERIFY(!scene.checker->mayBeSent(first) && !scene.checker->mayBeSent(second));
    QCOMPARE(ImageFiles::at(programImage()), ImageFiles{});

    scene.journal->events.clear();
    scene.server.setAnswer(imagePath, ok(second));
    scene.checker->onNeedDownloadNewFirmware();
    QTRY_VERIFY(scene.rests(1));
    QCOMPARE(scene.journal->events, told::imageStored());
    QCOMPARE(ImageFiles::at(programImage()).image, second);
    QVERIFY(!scene.checker->mayBeSent(first) && scene.checker->mayBeSent(second));
}

QTEST_GUILESS_MAIN(TestRepeatedChecks)
#include "tst_repeatedchecks.moc"
