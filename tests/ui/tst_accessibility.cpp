// What the window tells assistive technology, and its use without a mouse.

#include "tests/support/boxlines.h"
#include "tests/support/testwindow.h"
#include "tests/support/texts.h"
#include "tests/support/windowtables.h"

#include <QAccessible>
#include <QScrollBar>
#include <QTextEdit>
#include <QtTest>

#include <algorithm>

namespace {

QAccessibleInterface& accessible(QWidget& widget)
{
    QAccessibleInterface* const found = QAccessible::queryAccessibleInterface(&widget);
    if (found == nullptr)
        qFatal("nothing accessible of %s", qPrintable(widget.objectName()));
    return *found;
}

QString accessibleName(QWidget& widget)
{
    return accessible(widget).text(QAccessible::Name);
}

/// Where the focus comes by as many presses of a key as there are controls that take it.
QStringList stopsOf(MainWindow& window, Qt::Key key)
{
    constexpr int mostControls = 9;
    QStringList stops;
    while (stops.size() < mostControls) {
        QWidget* const from = window.focusWidget();
        QTest::keyClick(from == nullptr ? &window : from, key);
        const QString stop = window.focusWidget() == nullptr ? "none" : window.focusWidget()->objectName();
        if (stops.contains(stop))
            break;
        stops += stop;
    }
    return stops;
}

} // namespace

class TestAccessibility : public QObject
{
    Q_OBJECT

private slots:
    void barTellsWhatItShows_data();
    void barTellsWhatItShows();
    void textIsTheName_data();
    void textIsTheName();
    void labelBelongsToItsBar_data();
    void labelBelongsToItsBar();
    void focusBeginsAtConnect();
    void tabGoesInReadingOrder_data();
    void tabGoesInReadingOrder();
    void spacePressesAButton();
    void changeLogIsReachedByTab();
};

void TestAccessibility::barTellsWhatItShows_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("progressBarTransfer") << "Transfer progress";
    QTest::newRow("progressBarUpdate") << "Update progress";
}

void TestAccessibility::barTellsWhatItShows()
{
    QFETCH(QString, name);
    TestWindow window;
    QProgressBar& bar = window.bar(QTest::currentDataTag());
    bar.setValue(42);
    QCOMPARE(accessibleName(bar), name);
    QCOMPARE(accessible(bar).valueInterface()->currentValue().toInt(), 42);
}

void TestAccessibility::textIsTheName_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("labelTransfer") << text::transferInProgress;
    QTest::newRow("labelUpdate") << text::updateFinished;
    for (const char* button :
         {"connect_button", "updateDeviceButton", "downloadLogFile", "stopDownloadingFile"})
        QTest::newRow(button) << windowtable::control(button).text;
}

/// A name of its own would hide the text, and silence its changes.
void TestAccessibility::textIsTheName()
{
    QFETCH(QString, text);
    TestWindow window;
    auto* const control = window->findChild<QWidget*>(QTest::currentDataTag());
    QVERIFY(control->setProperty("text", text));
    QCOMPARE(control->accessibleName(), QString());
    QCOMPARE(accessibleName(*control), text);
}

void TestAccessibility::labelBelongsToItsBar_data()
{
    QTest::addColumn<QByteArray>("bar");
    QTest::newRow("labelTransfer") << QByteArray("progressBarTransfer");
    QTest::newRow("labelUpdate") << QByteArray("progressBarUpdate");
}

void TestAccessibility::labelBelongsToItsBar()
{
    QFETCH(QByteArray, bar);
    TestWindow window;
    const auto labels = accessible(window.bar(bar)).relations(QAccessible::Label);
    QCOMPARE(labels.size(), 1);
    QCOMPARE(labels.front().first->object(), &window.label(QTest::currentDataTag()));
}

void TestAccessibility::focusBeginsAtConnect()
{
    TestWindow window;
    window->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&*window));
    QCOMPARE(window->focusWidget(), &window.button("connect_button"));
}

void TestAccessibility::tabGoesInReadingOrder_data()
{
    QTest::addColumn<QStringList>("disabled");
    QTest::addColumn<QStringList>("hidden");
    QTest::addColumn<Qt::Key>("key");
    QTest::addColumn<QStringList>("stops");
    const QStringList none;
    const QStringList logButtons{"stopDownloadingFile", "downloadLogFile"};
    const QStringList all{"stopDownloadingFile", "downloadLogFile", "connect_button", "updateDeviceButton"};
    QStringList upwards = all;
    std::reverse(upwards.begin(), upwards.end());
    QTest::newRow("all") << none << none << Qt::Key_Tab << all;
    QTest::newRow("all, upwards") << none << none << Qt::Key_Backtab << upwards;
    QTest::newRow("no log") << none << logButtons << Qt::Key_Tab
                            << QStringList{"connect_button", "updateDeviceButton"};
    QTest::newRow("image stored") << QStringList{"connect_button"} << logButtons << Qt::Key_Tab
                                  << QStringList{"updateDeviceButton"};
    QTest::newRow("log offered") << QStringList{"connect_button", "updateDeviceButton"}
                                 << QStringList{"stopDownloadingFile"} << Qt::Key_Tab
                                 << QStringList{"downloadLogFile"};
    QTest::newRow("log under way") << QStringList{"downloadLogFile", "connect_button", "updateDeviceButton"}
                                   << none << Qt::Key_Tab << QStringList{"stopDownloadingFile"};
}

/// From top to bottom, left to right; the bars and what cannot be pressed are passed over.
void TestAccessibility::tabGoesInReadingOrder()
{
    QFETCH(QStringList, disabled);
    QFETCH(QStringList, hidden);
    QFETCH(Qt::Key, key);
    QFETCH(QStringList, stops);
    TestWindow window;
    const auto buttons = window->findChildren<QPushButton*>();
    for (QPushButton* button : buttons) {
        button->setVisible(!hidden.contains(button->objectName()));
        button->setEnabled(!disabled.contains(button->objectName()));
    }
    window.bar("progressBarTransfer").setEnabled(true);
    window.bar("progressBarUpdate").setEnabled(true);
    if (window->focusWidget() != nullptr)
        window->focusWidget()->clearFocus();
    QStringList met = stopsOf(*window, key);
    QVERIFY(!met.isEmpty());
    while (met.front() != stops.front() && met.contains(stops.front())) // a ring: begin where the list does
        met.append(met.takeFirst());
    QCOMPARE(met, stops);
}

void TestAccessibility::spacePressesAButton()
{
    TestWindow window;
    QTest::keyClick(&window.button("connect_button"), Qt::Key_Space);
    QCOMPARE(window.boxes.lines(), QStringList{boxline::notFound});
}

void TestAccessibility::changeLogIsReachedByTab()
{
    TestWindow window;
    QList<QWidget*> reached;
    QTextEdit* changeLog = nullptr;
    int scrolled = 0;
    window.boxes.answerWith(QMessageBox::No);
    window.boxes.whileOpen = [&](QMessageBox& box) {
        changeLog = box.findChild<QTextEdit*>();
        for (QAbstractButton* button : box.buttons()) {
            if (box.buttonRole(button) == QMessageBox::ActionRole)
                button->click(); // Show Details...
        }
        for (int stop = 0; stop < 4; ++stop) {
            QTest::keyClick(box.focusWidget(), Qt::Key_Tab);
            reached += box.focusWidget();
        }
        QTest::keyClick(changeLog, Qt::Key_PageDown);
        scrolled = changeLog->verticalScrollBar()->value();
    };
    window->onFindNewVersion("28", QString("- A line.\n").repeated(100));
    QVERIFY(changeLog != nullptr);
    QVERIFY(reached.contains(changeLog));
    QVERIFY(scrolled > 0);
}

QTEST_MAIN(TestAccessibility)
#include "tst_accessibility.moc"
