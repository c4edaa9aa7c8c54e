#include "net/updatechecker.h"
#include "tests/support/rows.h"
#include "tests/support/scriptedunit.h"
#include "tests/support/testwindow.h"
#include "tests/support/texts.h"

#include <QSignalSpy>
#include <QtTest>

namespace {

using Answer = std::function<void(Boxes&)>;

/// The window with nobody behind its requests, so that an accepted offer starts no download and no browser.
struct OfferDesk
{
    OfferDesk() { QObject::disconnect(&*window, nullptr, &window.checker(), nullptr); }

    /// How often each request was made: firmware, updater, nothing.
    [[nodiscard]] QList<int> requests() const { return {firmware.count(), updater.count(), nothing.count()}; }

    TestWindow window;
    QSignalSpy firmware{&*window, SIGNAL(needDownloadNewFirmware())};
    QSignalSpy updater{&*window, SIGNAL(needDownloadNewMainFirmware())};
    QSignalSpy nothing{&*window, SIGNAL(notNeedDownloadNewFirmware())};
};

void pressYes(Boxes& boxes)
{
    boxes.answerWith(QMessageBox::Yes);
}

void pressNo(Boxes& boxes)
{
    boxes.answerWith(QMessageBox::No);
}

void pressEscape(Boxes& boxes)
{
    boxes.answerWithEscape();
}

void pressEnter(Boxes& boxes)
{
    boxes.leaveOpen();
    boxes.whileOpen = [](QMessageBox& box) { QTest::keyClick(&box, Qt::Key_Return); };
}

/// The box goes with the program, unanswered.
void endTheProgram(Boxes& boxes)
{
    boxes.leaveOpen();
    boxes.whileOpen = [](QMessageBox&) { QCoreApplication::quit(); };
}

} // namespace

Q_DECLARE_METATYPE(Answer)

class TestOffer : public QObject
{
    Q_OBJECT

private slots:
    void firmwareText_data();
    void firmwareText();
    void updaterText_data();
    void updaterText();
    void box_data();
    void box();
    void noChangeLog();
    void firmwareAnswer_data();
    void firmwareAnswer();
    void updaterAnswer_data();
    void updaterAnswer();
    void requestPrecedesTheLabel();
};

void TestOffer::firmwareText_data()
{
    const Rows<int, QString, QString> row("current", "latest", "text");
    row("9 to 10", 9, "10", firmwareOffer("0.9", "1.0"));
    row("23 to 27", 23, "27", firmwareOffer("2.3", "2.7"));
    row("largest", 255, "255", firmwareOffer("25.5", "25.5"));
    row("unknown unit version", 0, "1", firmwareOffer("0.0", "0.1"));
    row("leading zeros go", 10, "0012", firmwareOffer("1.0", "1.2"));
    row("no whole number", 10, "1.5", firmwareOffer("1.0", "0.0"));
    row("no number", 10, "new", firmwareOffer("1.0", "0.0"));
}

void TestOffer::firmwareText()
{
    QFETCH(int, current);
    QFETCH(QString, latest);
    QFETCH(QString, text);
    placeServiceFile(); // so that connecting asks no server
    OfferDesk desk;
    const auto unit = ScriptedUnit::plugIn(UNIT_HB4);
    unit->say(firstReport(0, static_cast<std::uint8_t>(current)));
    desk.window.pressConnect();
    pressNo(desk.window.boxes);
    emit desk.window.checker().findNewVersion(latest, "what is new");
    QCOMPARE(desk.window.boxes.seen().size(), std::size_t{2});
    QCOMPARE(desk.window.boxes.seen().back().text, text);
}

void TestOffer::updaterText_data()
{
    const Rows<QString, QString> row("latest", "text");
    row("next", updater::next, updaterOffer());
    row("leading zeros go", QString("0") + updater::next, updaterOffer());
    row("more digits", "100", updaterOffer("0.100"));
    row("no number", "new", updaterOffer("0.0"));
}

void TestOffer::updaterText()
{
    QFETCH(QString, latest);
    QFETCH(QString, text);
    OfferDesk desk;
    pressNo(desk.window.boxes);
    emit desk.window.checker().findMainNewVersion(latest, "what is new");
    QCOMPARE(desk.window.boxes.seen().size(), std::size_t{1});
    QCOMPARE(desk.window.boxes.seen().front().text, text);
}

void TestOffer::box_data()
{
    QTest::addColumn<bool>("isUpdater");
    QTest::newRow("firmware") << false;
    QTest::newRow("updater") << true;
}

void TestOffer::box()
{
    QFETCH(bool, isUpdater);
    OfferDesk desk;
    QVERIFY(QTest::qWaitForWindowActive(&*desk.window,
                                        limits::hangMs())); // an active window could become the box's parent
    pressNo(desk.window.boxes);
    if (isUpdater)
        desk.window->onFindMainNewVersion("12", "line 1\nline 2");
    else
        desk.window->onFindNewVersion("12", "line 1\nline 2");
    QCOMPARE(desk.window.boxes.seen().size(), std::size_t{1});
    const SeenBox& box = desk.window.boxes.seen().front();
    QVERIFY2(box == offerBox(box.text, "line 1\nline 2"), qPrintable(box.line()));
    QVERIFY(!box.hasParent);
}

void TestOffer::noChangeLog()
{
    OfferDesk desk;
    pressNo(desk.window.boxes);
    desk.window->onFindNewVersion("12", "");
    QCOMPARE(desk.window.boxes.seen().front().buttons, (QStringList{"Yes", "No"}));
}

void TestOffer::firmwareAnswer_data()
{
    const Rows<Answer, QList<int>, bool> row("answer", "requests", "startsDownload");
    row("Yes", pressYes, {1, 0, 0}, true);
    row("Enter is Yes", pressEnter, {1, 0, 0}, true);
    row("No", pressNo, {0, 0, 0}, false);
    row("Escape is No", pressEscape, {0, 0, 0}, false);
    row("neither", endTheProgram, {0, 0, 1}, false);
}

void TestOffer::firmwareAnswer()
{
    QFETCH(Answer, answer);
    QFETCH(QList<int>, requests);
    QFETCH(bool, startsDownload);
    OfferDesk desk;
    answer(desk.window.boxes);
    if (requests.last() > 0)
        expectDiagnostic("Bug with avaible download window\n");
    QStringList expected = desk.window.controls();
    if (startsDownload)
        expected
            .replaceInStrings(QString("labelTransfer|disabled visible|%1|").arg(text::transferIdle),
                              QString("labelTransfer|enabled visible|%1|").arg(text::transferDownload))
            .replaceInStrings("progressBarTransfer|disabled", "progressBarTransfer|enabled");
    desk.window->onFindNewVersion("12", "log");
    QCOMPARE(desk.window.boxes.seen().size(), std::size_t{1});
    QCOMPARE(desk.requests(), requests);
    QCOMPARE(desk.window.controls(), expected);
}

void TestOffer::updaterAnswer_data()
{
    const Rows<Answer, QList<int>> row("answer", "requests");
    row("Yes", pressYes, {0, 1, 0});
    row("Enter is Yes", pressEnter, {0, 1, 0});
    row("No", pressNo, {0, 0, 0});
    row("Escape is No", pressEscape, {0, 0, 0});
    row("neither", endTheProgram, {0, 0, 1});
}

void TestOffer::updaterAnswer()
{
    QFETCH(Answer, answer);
    QFETCH(QList<int>, requests);
    OfferDesk desk;
    answer(desk.window.boxes);
    if (requests.last() > 0)
        expectDiagnostic("Bug with avaible download window\n");
    const QStringList before = desk.window.controls();
    desk.window->onFindMainNewVersion("12", "log");
    QCOMPARE(desk.window.boxes.seen().size(), std::size_t{1});
    QCOMPARE(desk.requests(), requests);
    QCOMPARE(desk.window.controls(), before); // no widget is touched
}

void TestOffer::requestPrecedesTheLabel()
{
    OfferDesk desk;
    pressYes(desk.window.boxes);
    QString atRequest;
    QObject::connect(&*desk.window, &MainWindow::needDownloadNewFirmware,
                     [&] { atRequest = desk.window.label("labelTransfer").text(); });
    desk.window->onFindNewVersion("12", "log");
    QCOMPARE(atRequest, QString(text::transferIdle));
}

QTEST_MAIN(TestOffer)
#include "tst_offer.moc"
