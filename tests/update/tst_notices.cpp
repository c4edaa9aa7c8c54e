#include "net/updatechecker.h"
#include "tests/support/boxlines.h"
#include "tests/support/rows.h"
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
    QVERIFY(runsOn([&] { emit window.checker().youHaveLastVersion(); },
                   [&] { return !window.boxes.seen().empty() && window.boxes.openCount() == 0; }));
    QCOMPARE(window.boxes.lines(), QStringList{boxline::upToDate});
    QCOMPARE(window.controls(), before);
}

void TestNotices::updaterIsBeingFetched()
{
    TestWindow window;
    bool stayedOpen = false;
    keepOpenAWhile(window.boxes, stayedOpen);
    QVERIFY(quits([&] { emit window.checker().startDownloadMainUpdate(); }));
    QVERIFY(stayedOpen); // the program ends with the box, not before
    QCOMPARE(window.boxes.lines(), QStringList{boxline::handOver});
}

void TestNotices::problem_data()
{
    const Rows<QString, QString> row("detail", "shown");
    row("no detail", {}, text::networkProblem);
    row("empty detail: a line break", "", QString(text::networkProblem) + '\n');
    row("detail on its own line", text::savingAdvice,
        QString(text::networkProblem) + '\n' + text::savingAdvice);
}

void TestNotices::problem()
{
    QFETCH(QString, detail);
    QFETCH(QString, shown);
    TestWindow window;
    bool stayedOpen = false;
    keepOpenAWhile(window.boxes, stayedOpen);
    QVERIFY(quits([&] { emit window.checker().youHaveProblem(text::networkProblem, detail); }));
    QVERIFY(stayedOpen);
    QCOMPARE(window.boxes.lines(), QStringList{errorBox(shown).line()});
}

void TestNotices::oneProblemAtATime()
{
    TestWindow window;
    window.boxes.whileOpen = [&](QMessageBox& box) {
        if (box.text() == "the first")
            emit window.checker().youHaveProblem("the next", QString());
    };
    QVERIFY(quits([&] { emit window.checker().youHaveProblem("the first", QString()); }));
    QCOMPARE(window.boxes.lines(), QStringList{errorBox("the first").line()});
}

QTEST_MAIN(TestNotices)
#include "tst_notices.moc"
