#include "net/updatechecker.h"
#include "tests/support/rows.h"
#include "tests/support/scriptedunit.h"
#include "tests/support/testwindow.h"
#include "tests/support/texts.h"

#include <QSignalSpy>
#include <QtTest>

namespace {

using Answer = std::function<void(Boxes&)>;
using Offer = std::function<void(MainWindow&, QString, QString)>; ///< version and change log

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

const Answer pressYes = [](Boxes& boxes) { boxes.answerWith(QMessageBox::Yes); };
const Answer pressNo = [](Boxes& boxes) { boxes.answerWith(QMessageBox::No); };
const Answer pressEscape = [](Boxes& boxes) { boxes.answerWithEscape(); };
const Answer pressEnter = [](Boxes& boxes) {
    boxes.leaveOpen();
    boxes.whileOpen = [](QMessageBox& box) { QTest::keyClick(&box, Qt::Key_Return); };
};
/// The box goes with the program, unanswered.
const Answer endTheProgram = [](Boxes& boxes) {
    boxes.leaveOpen();
    boxes.whileOpen = [](QMessageBox&) { QCoreApplication::quit(); };
};

} // namespace

Q_DECLARE_METATYPE(Answer)
Q_DECLARE_METATYPE(Offer)

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
    void answer_data();
    void answer();
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
    placeServiceFile(); // so that connecting asks no server
    OfferDesk desk;
    const auto unit = ScriptedUnit::plugIn(UNIT_HB4);
    unit->say(firstReport(0, static_cast<std::uint8_t>(current)));
    desk.window.pressConnect();
    pressNo(desk.window.boxes);
    emit desk.window.checker().findNewVersion(latest, "what is new");
    QCOMPARE(desk.window.boxes.seen().size(), std::size_t{2});
    QTEST(desk.window.boxes.seen().back().text, "text");
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
    OfferDesk desk;
    pressNo(desk.window.boxes);
    emit desk.window.checker().findMainNewVersion(latest, "what is new");
    QCOMPARE(desk.window.boxes.seen().size(), std::size_t{1});
    QTEST(desk.window.boxes.seen().front().text, "text");
}

void TestOffer::box_data()
{
    const Rows<Offer, QString, QString> row("offer", "changeLog", "shown");
    const Offer firmware = &MainWindow::onFindNewVersion;
    row("firmware", firmware, "line 1\nline 2", "line 1\nline 2");
    row("updater", &MainWindow::onFindMainNewVersion, "line 1\nline 2", "line 1\nline 2");
    row("no change log", firmware, "", "");
    const QString longest(100'000, 'x');
    row("longest change log", firmware, longest, longest);
    row("change log too long to be shown", firmware, longest + 'y', longest + "\n[...]");
}

void TestOffer::box()
{
    QFETCH(Offer, offer);
    QFETCH(QString, changeLog);
    QFETCH(QString, shown);
    OfferDesk desk;
    QVERIFY(QTest::qWaitForWindowActive(&*desk.window,
                                        limits::hangMs())); // an active window could become the box's parent
    pressNo(desk.window.boxes);
    offer(*desk.window, "12", changeLog);
    QCOMPARE(desk.window.boxes.seen().size(), std::size_t{1});
    const SeenBox& box = desk.window.boxes.seen().front();
    QVERIFY2(box == offerBox(box.text, shown), qPrintable(box.line()));
    QVERIFY(!box.hasParent);
}

void TestOffer::answer_data()
{
    const Rows<Offer, Answer, QList<int>, bool> row("offer", "answer", "requests", "startsDownload");
    const Offer firmware = &MainWindow::onFindNewVersion;
    row("firmware, Yes", firmware, pressYes, {1, 0, 0}, true);
    row("firmware, Enter is Yes", firmware, pressEnter, {1, 0, 0}, true);
    row("firmware, No", firmware, pressNo, {0, 0, 0}, false);
    row("firmware, Escape is No", firmware, pressEscape, {0, 0, 0}, false);
    row("firmware, neither", firmware, endTheProgram, {0, 0, 1}, false);
    const Offer updater = &MainWindow::onFindMainNewVersion;
    row("updater, Yes", updater, pressYes, {0, 1, 0}, false); // no widget is touched
    row("updater, Enter is Yes", updater, pressEnter, {0, 1, 0}, false);
    row("updater, No", updater, pressNo, {0, 0, 0}, false);
    row("updater, Escape is No", updater, pressEscape, {0, 0, 0}, false);
    row("updater, neither", updater, endTheProgram, {0, 0, 1}, false);
}

void TestOffer::answer()
{
    QFETCH(Offer, offer);
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
    offer(*desk.window, "12", "log");
    QCOMPARE(desk.window.boxes.seen().size(), std::size_t{1});
    QCOMPARE(desk.requests(), requests);
    QCOMPARE(desk.window.controls(), expected);
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
