#include "tests/net/scene.h"
#include "tests/support/imagefiles.h"
#include "tests/support/rows.h"
#include "tests/support/ticks.h"

#include <QFile>
#include <QtTest>

/// What one request leaves to the next, and what two of them at once do to each other.
class TestOverlappingRequests : public QObject
{
    Q_OBJECT

private slots:
    void init() { scene.reset(); }
    void staleLines_data();
    void staleLines();
    void secondCheckInFlight_data();
    void secondCheckInFlight();
    void completionActsOnTheReplyInFlight();
    void checkDuringADownload_data();
    void checkDuringADownload();

private:
    Scene scene;
};

void TestOverlappingRequests::staleLines_data()
{
    // ofTheChangeLog: what follows when it is asked for (once more)
    const Rows<QByteArray, QStringList, QStringList> row("stale", "events", "ofTheChangeLog");
    row("duplicate key takes the fresh value", "HB4Ver=99\n", told::offer(), told::downloadError());
    row("other keys still count", "HB4Ver=99\nMainVer=99\n", told::offer(),
        told::downloadError()); // the fresh MainVer is our own
    row("last line without its end runs into the first fresh line", "HB4Ver=99\nremark ", told::incomplete(),
        told::offer());
    row("NUL byte hides what is fresh", QByteArray("HB4Ver=99\n\0\n", 12), told::incomplete(),
        told::downloadError());
}

/// A first answer is cut short; what arrived of it stands before the second answer.
void TestOverlappingRequests::staleLines()
{
    QFETCH(QByteArray, stale);
    QFETCH(QStringList, events);
    QFETCH(QStringList, ofTheChangeLog);
    scene.server.setAnswer(cataloguePath, {{announced(1000, stale)}});
    scene.checker->checkUpdate();
    QTRY_COMPARE(scene.journal->events, scene.networkError(Request::catalogue));

    scene.journal->events.clear();
    scene.checkAgainst(scene.catalogue());
    QTRY_VERIFY(scene.rests(events.size()));
    QCOMPARE(scene.journal->events, events);
    scene.checker->downloadChangeLog();
    QTRY_COMPARE(scene.journal->events, events + ofTheChangeLog);
}

void TestOverlappingRequests::secondCheckInFlight_data()
{
    QTest::addColumn<bool>("inMidAnswer");
    QTest::newRow("nothing arrived yet") << false;
    QTest::newRow("half the answer arrived") << true;
}

/// The first reply's completion acts on the second reply, whatever comes of it; no crash and no hang.
void TestOverlappingRequests::secondCheckInFlight()
{
    QFETCH(bool, inMidAnswer);
    const QByteArray answer = httpAnswer("200 OK", scene.catalogue());
    scene.server.setAnswer(cataloguePath, inTwoSteps(answer, inMidAnswer ? answer.size() / 2 : 0));
    scene.checker->checkUpdate();
    QTRY_COMPARE(scene.server.requests().size(), 1);
    scene.checker->checkUpdate();
    QTRY_COMPARE(scene.server.requests().size(), 2);
    scene.server.goOn();
    QTRY_VERIFY(scene.rests(1));
    QVERIFY(!scene.clock().isActive());

    scene.journal->events.clear();
    scene.server.setAnswer(cataloguePath,
                           ok('\n' + scene.catalogue({{"HB4Ver", "23"}}))); // behind what is left
    scene.checker->checkUpdate();                                           // and the checker still works
    QTRY_COMPARE(scene.journal->events, told::upToDate());
}

/// The first answer is whole and the second one silent: the first completion judges the second reply.
void TestOverlappingRequests::completionActsOnTheReplyInFlight()
{
    scene.server.setAnswer(cataloguePath, inTwoSteps(httpAnswer("200 OK", scene.catalogue()), 0));
    scene.checker->checkUpdate();
    QTRY_COMPARE(scene.server.requests().size(), 1);
    scene.server.setAnswer(cataloguePath, silence());
    scene.checker->checkUpdate();
    QTRY_COMPARE(scene.server.requests().size(), 2);
    scene.server.goOn();
    QTRY_COMPARE(scene.journal->events, scene.networkError(Request::catalogue));
    QVERIFY(scene.checker->isBusy());
}

void TestOverlappingRequests::checkDuringADownload_data()
{
    QTest::addColumn<QByteArray>("answer");
    QTest::newRow("catalogue not answered") << QByteArray();
    QTest::newRow("catalogue half there") << httpAnswer("200 OK", scene.catalogue()).chopped(10);
    QTest::newRow("catalogue incomplete") << httpAnswer("200 OK", "MainVer=11\n");
}

/// Half an image, or one with a catalogue in it, is never stored as firmware.
void TestOverlappingRequests::checkDuringADownload()
{
    QFETCH(QByteArray, answer);
    const QByteArray image = httpAnswer("200 OK", QByteArray(1000, 'i'));
    scene.server.setAnswer(imagePath, inTwoSteps(image, image.size() - 500));
    scene.server.setAnswer(cataloguePath, {{answer}, End::keepOpen});
    scene.ask(Request::image);
    QTRY_COMPARE(scene.received(), 500);
    QNetworkReply* const download = scene.reply();
    scene.checker->checkUpdate();
    QTRY_COMPARE(scene.server.requests().size(), 2);
    QTRY_COMPARE(scene.server.bytesSent(), image.size() - 500 + answer.size());
    passTicks(50); // the catalogue's bytes may be anywhere now: nothing that shows outside tells
    scene.server.goOn();
    QTRY_VERIFY(!download->isRunning());
    QVERIFY2(!QFile::remove(programImage()), "a broken image was stored");
}

QTEST_GUILESS_MAIN(TestOverlappingRequests)
#include "tst_overlappingrequests.moc"
