#include "ui/windowscale.h"

#include "tests/support/testwindow.h"
#include "tests/support/texts.h"

#include <QApplication>
#include <QLayout>
#include <QProxyStyle>
#include <QWindow>
#include <QtTest>

namespace {

const QSize layoutSize(488, 440);

/// The program's font, larger, until this goes.
class LargerFont
{
public:
    explicit LargerFont(double points)
    {
        QFont font = before;
        font.setPointSizeF(points);
        QApplication::setFont(font);
    }
    ~LargerFont() { QApplication::setFont(before); }
    Q_DISABLE_COPY_MOVE(LargerFont)

private:
    QFont before = QApplication::font();
};

/// A style that keeps so much room on each side of a button's text.
class RoomyButtons : public QProxyStyle
{
public:
    RoomyButtons(int roomBeside, int roomAbove) : QProxyStyle("fusion"), beside(roomBeside), above(roomAbove)
    {
    }
    QSize sizeFromContents(ContentsType type, const QStyleOption* option, const QSize& contents,
                           const QWidget* widget) const override
    {
        const QSize size = QProxyStyle::sizeFromContents(type, option, contents, widget);
        return type == CT_PushButton ? size + QSize(2 * beside, 2 * above) : size;
    }
    QRect subElementRect(SubElement element, const QStyleOption* option, const QWidget* widget) const override
    {
        const QRect rect = QProxyStyle::subElementRect(element, option, widget);
        return element == SE_PushButtonContents ? rect.adjusted(beside, above, -beside, -above) : rect;
    }

private:
    int beside;
    int above;
};

/// Makes the buttons roomy until this goes.
class RoomyStyle
{
public:
    RoomyStyle(int beside, int above) { QApplication::setStyle(new RoomyButtons(beside, above)); }
    ~RoomyStyle() { QApplication::setStyle("fusion"); }
    Q_DISABLE_COPY_MOVE(RoomyStyle)
};

constexpr std::array buttonNames{"connect_button", "updateDeviceButton", "downloadLogFile",
                                 "stopDownloadingFile"};

bool fits(const QSize& need, const QWidget& control)
{
    return need.width() <= control.width() && need.height() <= control.height();
}

double factorOf(const TestWindow& window)
{
    return window.label("labelUpdate").height() / 16.0;
}

} // namespace

class TestWindowScale : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void largeFontCutsNothing_data();
    void largeFontCutsNothing();
    void noLargerThanNeeded();
    void longTextsOfTheRowFit();
    void highTextsOfTheRowFit();
    void smallFontLeavesTheLayout();
    void fontChangesWhileShown();
    void sizeThatTheUserGaveKeepsItsShare();
    void styleChangesWhileShown();
    void roomAroundATextIsNotForLetters();
    void windowThatFillsTheScreenStaysSo_data();
    void windowThatFillsTheScreenStaysSo();
    void looksAgainOnAnotherScreen();
    void sizeGivenWithAnotherScreenStays();
    void fontThatNobodyChoseStretchesNothing();

private:
    QFont fontAtStart;
    QSize sizeAtStart; ///< with that font
};

/// What desktops use; the screen that is none has a larger one.
void TestWindowScale::initTestCase()
{
    fontAtStart = QApplication::font();
    sizeAtStart = TestWindow()->size();
    QApplication::setFont(QFont("Sans Serif", 9));
}

void TestWindowScale::largeFontCutsNothing_data()
{
    QTest::addColumn<double>("points");
    for (const int points : {12, 14, 18, 24, 36})
        QTest::addRow("%d pt", points) << double(points);
}

void TestWindowScale::largeFontCutsNothing()
{
    QFETCH(double, points);
    const LargerFont font(points);
    TestWindow window;
    QLabel& transfer = window.label("labelTransfer");
    QLabel& update = window.label("labelUpdate");
    transfer.setText(text::transferDownload);
    update.setText(text::updateInProgress);
    QVERIFY(fits(transfer.sizeHint(), transfer));
    QVERIFY(fits(update.sizeHint(), update));
    for (const char* name : buttonNames) {
        const QPushButton& button = window.button(name);
        QVERIFY2(fits(button.sizeHint(), button), name);
        const QRect inWindow(button.mapTo(&*window, QPoint()), button.size());
        QVERIFY2(window->rect().contains(inWindow), name);
    }
    for (const char* name : {"progressBarTransfer", "progressBarUpdate"}) {
        const QProgressBar& bar = window.bar(name);
        QVERIFY2(fits({bar.fontMetrics().horizontalAdvance("100%"), bar.fontMetrics().height()}, bar), name);
    }
}

void TestWindowScale::noLargerThanNeeded()
{
    const LargerFont font(24);
    TestWindow window;
    const int line = window.label("labelUpdate").fontMetrics().height();
    const int button = window.button("stopDownloadingFile").sizeHint().width();
    const double needed = std::max(line / 16.0, button / 231.0);
    QCOMPARE(window->size(), windowscale::stretched(layoutSize, needed));
    QCOMPARE(window.bar("progressBarUpdate").geometry(),
             windowscale::stretched(QRect(20, 260, 451, 21), needed));
    QCOMPARE(window->findChild<QLayout*>("horizontalLayout")->spacing(), qRound(6 * needed));
}

/// As a translation may have them.
void TestWindowScale::longTextsOfTheRowFit()
{
    TestWindow window;
    QPushButton& connect = window.button("connect_button");
    QPushButton& update = window.button("updateDeviceButton");
    update.setText(QString(60, 'W'));
    const LargerFont font(10); // has the scale look again
    QTRY_VERIFY(factorOf(window) > 1);
    QVERIFY(fits(update.sizeHint(), update));
    QVERIFY(fits(connect.sizeHint(), connect));
    const double needed = (update.sizeHint().width() + connect.sizeHint().width()) / (471.0 - 6);
    QTRY_COMPARE(window->size(), windowscale::stretched(layoutSize, needed));
}

void TestWindowScale::highTextsOfTheRowFit()
{
    TestWindow window;
    QPushButton& update = window.button("updateDeviceButton");
    update.setText(QString("Update\nDevice\n").repeated(4));
    const LargerFont font(10); // has the scale look again
    QTRY_VERIFY(factorOf(window) > 1);
    const double needed = update.sizeHint().height() / 28.0; // twice as much as from its middle to the edge
    QTRY_COMPARE(window->size(), windowscale::stretched(layoutSize, needed));
}

void TestWindowScale::smallFontLeavesTheLayout()
{
    const LargerFont font(6);
    TestWindow window;
    QCOMPARE(window->size(), layoutSize);
    QCOMPARE(factorOf(window), 1.0);
}

void TestWindowScale::fontChangesWhileShown()
{
    TestWindow window;
    QCOMPARE(window->size(), layoutSize);
    {
        const LargerFont font(24);
        QTRY_VERIFY(factorOf(window) > 2);
        QTRY_VERIFY(window->width() > 2 * layoutSize.width());
    }
    QTRY_COMPARE(window->size(), layoutSize);
    QCOMPARE(window.bar("progressBarUpdate").geometry(), QRect(20, 260, 451, 21));
    QCOMPARE(window.label("labelUpdate").geometry(), QRect(20, 230, 411, 16));
    QCOMPARE(window->findChild<QLayout*>("horizontalLayout")->spacing(), 6);
}

void TestWindowScale::sizeThatTheUserGaveKeepsItsShare()
{
    TestWindow window;
    window->resize(2 * layoutSize);
    QCoreApplication::processEvents(); // the user is done
    const LargerFont font(24);
    QTRY_VERIFY(factorOf(window) > 2);
    QTRY_COMPARE(window->size(), windowscale::stretched(2 * layoutSize, factorOf(window)));
}

void TestWindowScale::styleChangesWhileShown()
{
    TestWindow window;
    QCOMPARE(window->size(), layoutSize);
    const RoomyStyle style(20, 20);
    QTRY_VERIFY(factorOf(window) > 1);
    for (const char* name : buttonNames)
        QVERIFY2(fits(window.button(name).sizeHint(), window.button(name)), name);
}

void TestWindowScale::roomAroundATextIsNotForLetters()
{
    TestWindow window;
    window.button("downloadLogFile").setText("Log");
    window.button("stopDownloadingFile").setText("Stop");
    const RoomyStyle style(40, 0);
    QCoreApplication::processEvents();
    QCOMPARE(factorOf(window), 1.0);
    QPushButton& button = window.button("downloadLogFile");
    QString text;
    while (button.fontMetrics().horizontalAdvance(text) < button.width() - 50)
        text += 'i';
    button.setText(text);
    emit window->windowHandle()->screenChanged(window->screen()); // has the scale look again
    QTRY_VERIFY(factorOf(window) > 1);
    QVERIFY(fits(button.sizeHint(), button));
}

void TestWindowScale::windowThatFillsTheScreenStaysSo_data()
{
    QTest::addColumn<int>("state");
    QTest::newRow("maximized") << int{Qt::WindowMaximized};
    QTest::newRow("full screen") << int{Qt::WindowFullScreen};
}

void TestWindowScale::windowThatFillsTheScreenStaysSo()
{
    QFETCH(int, state);
    TestWindow window;
    window->setWindowState(static_cast<Qt::WindowState>(state));
    QTRY_VERIFY(window->size() != layoutSize);
    const QSize before = window->size();
    const LargerFont font(24);
    QTRY_VERIFY(factorOf(window) > 2);
    QCOMPARE(window->size(), before);
}

/// Another screen may have another factor, though neither font nor style changes.
void TestWindowScale::looksAgainOnAnotherScreen()
{
    TestWindow window;
    window.button("updateDeviceButton").setText(QString(60, 'W'));
    QCoreApplication::processEvents();
    QCOMPARE(factorOf(window), 1.0); // a text alone changes nothing
    emit window->windowHandle()->screenChanged(window->screen());
    QTRY_VERIFY(factorOf(window) > 1);
}

/// As a window manager does that moves the window into one half of the other screen.
void TestWindowScale::sizeGivenWithAnotherScreenStays()
{
    TestWindow window;
    window->resize(2 * layoutSize);
    emit window->windowHandle()->screenChanged(window->screen());
    QCoreApplication::processEvents();
    QCOMPARE(window->size(), 2 * layoutSize);
    const LargerFont font(24); // its share counts from there
    QTRY_VERIFY(factorOf(window) > 2);
    QTRY_COMPARE(window->size(), windowscale::stretched(2 * layoutSize, factorOf(window)));
}

void TestWindowScale::fontThatNobodyChoseStretchesNothing()
{
    QCOMPARE(sizeAtStart, layoutSize);
    const LargerFont chosen(fontAtStart.pointSizeF());
    QVERIFY(TestWindow()->size() != layoutSize);
}

QTEST_MAIN(TestWindowScale)

#include "tst_windowscale.moc"
