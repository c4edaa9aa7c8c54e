#include "ui/windowscale.h"

#include <QtTest>

using windowscale::Need;

Q_DECLARE_METATYPE(windowscale::Need)

/// How large the layout becomes, and where a window goes that becomes larger.
class TestScaleRules : public QObject
{
    Q_OBJECT

private slots:
    void screen_data();
    void screen();
    void layout_data();
    void layout();
    void wholePixels();
    void resized_data();
    void resized();
};

void TestScaleRules::screen_data()
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

void TestScaleRules::screen()
{
    QFETCH(double, dotsPerInch);
    QTEST(windowscale::screenFactor(dotsPerInch), "factor");
}

void TestScaleRules::layout_data()
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

void TestScaleRules::layout()
{
    QFETCH(double, screenFactor);
    QFETCH(QVector<Need>, needs);
    QTEST(windowscale::layoutFactor(screenFactor, needs), "factor");
}

void TestScaleRules::wholePixels()
{
    QCOMPARE(windowscale::stretched(QRect(20, 160, 451, 21), 1), QRect(20, 160, 451, 21));
    QCOMPARE(windowscale::stretched(QRect(20, 160, 451, 21), 1.25), QRect(25, 200, 564, 26));
    QCOMPARE(windowscale::stretched(QSize(488, 440), 3), QSize(1464, 1320));
}

void TestScaleRules::resized_data()
{
    QTest::addColumn<QRect>("window");
    QTest::addColumn<QSize>("size");
    QTest::addColumn<QRect>("place");
    const QRect small(900, 200, 100, 80);
    const QRect large(900, 200, 300, 80);
    QTest::newRow("grows on its screen") << small << QSize(200, 160) << QRect(900, 200, 200, 160);
    QTest::newRow("shrinks on its screen") << small << QSize(50, 40) << QRect(900, 200, 50, 40);
    QTest::newRow("its edge comes to the other screen")
        << small << QSize(199, 80) << QRect(900, 200, 199, 80);
    QTest::newRow("its centre would come to the other screen")
        << small << QSize(300, 80) << QRect(800, 200, 300, 80);
    QTest::newRow("its centre would go where no screen is")
        << QRect(100, 700, 100, 80) << QSize(100, 800) << QRect(100, 700, 100, 800);
    // It belongs to the right one then, as its centre is there.
    QTest::newRow("its centre comes to its own screen")
        << large << QSize(400, 80) << QRect(900, 200, 400, 80);
}

/// The window's screen is the left one, 1000 wide, of two of equal height; or, for a window whose centre is
/// there, the right one.
void TestScaleRules::resized()
{
    QFETCH(QRect, window);
    QFETCH(QSize, size);
    const QRect left(0, 0, 1000, 800);
    const QRect right(1000, 0, 1000, 800);
    const QRect own = left.contains(window.center()) ? left : right;
    QTEST(windowscale::resized(window, size, own, {left, right}), "place");
}

QTEST_GUILESS_MAIN(TestScaleRules)
#include "tst_scalerules.moc"
