#include "tests/net/scene.h"

#include <QTimer>
#include <QtTest>

constexpr int silenceLimitMs = 30000; ///< the program's

/// Servers that do not go on: reported every 30 s without progress, never given up.
class TestSilence : public QObject
{
    Q_OBJECT

private slots:
    void init() { scene.reset(); }
    void progressRestartsTheClock();
    void silenceIsReportedAgainAndAgain_data() { addRequests(); }
    void silenceIsReportedAgainAndAgain();
    void silenceInMidAnswer();

private:
    Scene scene;
};

void TestSilence::progressRestartsTheClock()
{
    QTimer* timer = &scene.clock();
    timer->start(silenceLimitMs * 10);
    scene.checker->onDataReadProgress(1, 2);
    QVERIFY(timer->isActive());
    QCOMPARE(timer->interval(), silenceLimitMs);
}

void TestSilence::silenceIsReportedAgainAndAgain()
{
    QFETCH(Request, request);
    scene.server.setAnswer(Scene::path(request), silence());
    scene.ask(request);
    QTRY_COMPARE(scene.server.requests().size(), 1);
    QTimer* timer = &scene.clock();
    QCOMPARE(timer->interval(), silenceLimitMs);
    QStringList expected;
    for (int report = 1; report <= 3; ++report) {
        QVERIFY(timer->isActive());
        scene.letTheClockFire();
        expected += told::exitSlot();
        QCOMPARE(scene.journal->all, expected);
        QVERIFY(scene.checker->isBusy());
    }
}

void TestSilence::silenceInMidAnswer()
{
    const QByteArray answer = httpAnswer("200 OK", scene.catalogue({{"HB4Ver", "23"}}));
    scene.server.setAnswer(cataloguePath, inTwoSteps(answer, answer.size() - 9));
    scene.checker->checkUpdate();
    QTRY_VERIFY(scene.received() > 0);
    scene.letTheClockFire();
    scene.server.goOn(); // the answer that comes late is used all the same
    QTRY_COMPARE(scene.journal->events, told::exitSlot() + told::upToDate());
    QVERIFY(!scene.clock().isActive());
}

QTEST_GUILESS_MAIN(TestSilence)
#include "tst_silence.moc"
