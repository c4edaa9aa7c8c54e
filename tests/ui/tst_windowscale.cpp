#include "ui/windowscale.h"

#include "tests/support/testwindow.h"
#include "tests/support/texts.h"

#include <QApplication>
#include <QLayout>
#include <QProxyStyle>
#include <QtTest>

using windowscale::Need;

Q_DECLARE_METATYPE(windowscale::Need)

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
    LargerFont(const LargerFont&) = delete;
    LargerFont& operator=(const LargerFont&) = delete;

private:
    QFont before = QApplication::font();
};

/// A style that keeps so much room around a button's text.
class RoomyButtons : public QProxyStyle
{
public:
    RoomyButtons() : QProxyStyle("fusion") {}
    QSize sizeFromContents(ContentsType type, const QStyleOption* option, const QSize& contents,
                           const QWidget* widget) const override
    {
        const QSize size = QProxyStyle::sizeFromContents(type, option, contents, widget);
        return type == CT_PushButton ? size + QSize(2 * room, 2 * room) : size;
    }
    QRect subElementRect(SubElement element, const QStyleOption* option, const QWidget* widget) const override
    {
        const QRect rect = QProxyStyle::subElementRect(element, option, widget);
        return element == SE_PushButtonContents ? rect.adjusted(room, room, -room, -room) : rect;
    }

private:
    static constexpr int room = 20;
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
    void screen_data();
    void screen();
    void layout_data();
    void layout();
    void wholePixels();
    void largeFontCutsNothing_data();
    void largeFontCutsNothing();
    void noLargerThanNeeded();
    void longTextsOfTheRowFit();
    void smallFontLeavesTheLayout();
    void fontChangesWhileShown();
    void sizeThatTheUserGaveKeepsItsShare();
    void styleChangesWhileShown();
    void windowThatFillsTheScreenStaysSo_data();
    void windowThatFillsTheScreenStaysSo();
};

/// What desktops use; the screen that is none has a larger one.
void TestWindowScale::initTestCase()
{
    QApplication::setFont(QFont("Sans Serif", 9));
}

void TestWindowScale::screen_data()
{
    QTest::addColumn<double>("dotsPerInch");
    QTest::addColumn<double>("factor");
    QTest::newRow("macOS") << 72.0 << 1.0;
    QTest::newRow("90 dpi") << 90.0 << 1.0;
    QTest::newRow("96 dpi") << 96.0 << 1.0;
    QTest::newRow("108 dpi, rounded up from millimetres") << 108.9 << 1.0;
    QTest::newRow("125 %") << 120.0 << 1.25;
    QTest::newRow("150 %") << 144.0 << 1.5;
    QTest::newRow("175 %") << 168.0 << 1.75;
    QTest::newRow("200 %") << 192.0 << 2.0;
    QTest::newRow("300 %") << 288.0 << 3.0;
}

void TestWindowScale::screen()
{
    QFETCH(double, dotsPerInch);
    QTEST(windowscale::screenFactor(dotsPerInch), "factor");
}

void TestWindowScale::layout_data()
{
    QTest::addColumn<double>("screenFactor");
    QTest::addColumn<QVector<Need>>("needs");
    QTest::addColumn<double>("factor");
    const Need roomy{{100, 20}, {50, 10}, {60, 12}};
    const Need tight{{100, 20}, {100, 20}, {110, 22}};
    const Need tooWide{{100, 20}, {101, 10}, {120, 12}};
    const Need tooHigh{{100, 20}, {50, 21}, {60, 30}};
    QTest::newRow("nothing to show") << 1.0 << QVector<Need>{} << 1.0;
    QTest::newRow("room enough") << 1.0 << QVector<Need>{roomy} << 1.0;
    QTest::newRow("only air is missing") << 1.0 << QVector<Need>{roomy, tight} << 1.0;
    QTest::newRow("too wide") << 1.0 << QVector<Need>{roomy, tooWide} << 1.2;
    QTest::newRow("too high") << 1.0 << QVector<Need>{tooHigh, roomy} << 1.5;
    QTest::newRow("the neediest decides") << 1.0 << QVector<Need>{tooWide, tooHigh, tight} << 1.5;
    QTest::newRow("the screen gives enough") << 2.0 << QVector<Need>{tooWide, tooHigh} << 2.0;
    QTest::newRow("the screen gives enough but for air")
        << 1.25 << QVector<Need>{{{100, 20}, {110, 10}, {130, 12}}} << 1.25;
    QTest::newRow("the screen gives too little")
        << 1.04 << QVector<Need>{tooHigh, {{100, 20}, {105, 1}, {106, 1}}} << 1.5;
    QTest::newRow("never less than the screen's")
        << 1.04 << QVector<Need>{{{100, 20}, {105, 1}, {102, 1}}} << 1.04;
}

void TestWindowScale::layout()
{
    QFETCH(double, screenFactor);
    QFETCH(QVector<Need>, needs);
    QTEST(windowscale::layoutFactor(screenFactor, needs), "factor");
}

void TestWindowScale::wholePixels()
{
    QCOMPARE(windowscale::stretched(QRect(20, 160, 451, 21), 1), QRect(20, 160, 451, 21));
    QCOMPARE(windowscale::stretched(QRect(20, 160, 451, 21), 1.25), QRect(25, 200, 564, 26));
    QCOMPARE(windowscale::stretched(layoutSize, 3), QSize(1464, 1320));
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
    QApplication::setStyle(new RoomyButtons);
    const auto setBack = qScopeGuard([] { QApplication::setStyle("fusion"); });
    QTRY_VERIFY(factorOf(window) > 1);
    for (const char* name : buttonNames)
        QVERIFY2(fits(window.button(name).sizeHint(), window.button(name)), name);
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

QTEST_MAIN(TestWindowScale)

#include "tst_windowscale.moc"
