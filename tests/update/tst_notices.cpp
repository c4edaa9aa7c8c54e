#include "net/updatechecker.h"
#include "tests/support/testwindow.h"
#include "tests/support/ticks.h"

#include <QtTest>

namespace {

/// Has a box stay open for a while before it is answered; `stayed` tells whether it did.
void keepOpenAWhile(Boxes& boxes, bool& stayed)
{
    boxes.whileOpen = [&stayed](QMessageBox& box) {
        passTicks(30);
        stayed = box.isVisible();
    };
}

} // namespace

/// What the update checker has the window say.
class TestNotices : public QObject
{
    Q_OBJECT

private slots:
    void lastVersion();
    void updaterIsBeingFetched();
    void problem_data();
    void problem();
    void oneProblemAtATime();
};

void TestNotices::lastVersion()
{
    TestWindow window;
    const QStringList before = window.controls();
    QVERIFY(runsOn([&] { emit window->updateChecker->youHaveLastVersion(); },
                   [&] { return !window.boxes.seen().empty() && window.boxes.openCount() == 0; }));
    QCOMPARE(window.boxes.lines(), QStringList{informationBox("Your unit has the latest software")});
    QCOMPARE(window.controls(), before);
}

void TestNotices::updaterIsBeingFetched()
{
    TestWindow window;
    bool stayedOpen = false;
    keepOpenAWhile(window.boxes, stayedOpen);
    QVERIFY(quits([&] { emit window->updateChecker->startDownloadMainUpdate(); }));
    QVERIFY(stayedOpen); // the program ends with the box, not before
    QCOMPARE(window.boxes.lines(),
             QStringList{informationBox("Wait for download new Talvex Updater.\nClose program and insall new "
                                        "version Talvex Updater.\nTry again update unit.")});
}

void TestNotices::problem_data()
{
    QTest::addColumn<QString>("detail");
    QTest::addColumn<QString>("shown");
    QTest::newRow("no detail") << QString() << "Problem with internet connection";
    QTest::newRow("empty detail: a line break") << QString("") << "Problem with internet connection\n";
    QTest::newRow("detail on its own line") << "Check the HD"
                                            << "Problem with internet connection\nCheck the HD";
}

void TestNotices::problem()
{
    QFETCH(QString, detail);
    QFETCH(QString, shown);
    TestWindow window;
    bool stayedOpen = false;
    keepOpenAWhile(window.boxes, stayedOpen);
    QVERIFY(quits(
        [&] { emit window->updateChecker->youHaveProblem("Problem with internet connection", detail); }));
    QVERIFY(stayedOpen);
    QCOMPARE(window.boxes.lines(), QStringList{criticalBox(shown)});
}

void TestNotices::oneProblemAtATime()
{
    TestWindow window;
    window.boxes.whileOpen = [&](QMessageBox& box) {
        if (box.text() == "the first")
            emit window->updateChecker->youHaveProblem("the next", QString());
    };
    QVERIFY(quits([&] { emit window->updateChecker->youHaveProblem("the first", QString()); }));
    QCOMPARE(window.boxes.lines(), QStringList{criticalBox("the first")});
}

QTEST_MAIN(TestNotices)
#include "tst_notices.moc"
