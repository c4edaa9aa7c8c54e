// The window on screens of other resolutions, and with the fonts of a user who sees badly.

#include "tests/program/scenario.h"

#include <QtTest>

namespace {

const QStringList usualScreen{"-screen", "0", "2000x1600x24"};
const QSize layoutSize(488, 440);
const QRect layoutOfBar(20, 260, 451, 21);
const QRect layoutOfStop(250, 350, 231, 23);

QRect placeOf(const QJsonObject& widget)
{
    return {widget["x"].toInt(), widget["y"].toInt(), widget["width"].toInt(), widget["height"].toInt()};
}

QRect times(const QRect& rect, double factor)
{
    return {qRound(rect.x() * factor), qRound(rect.y() * factor), qRound(rect.width() * factor),
            qRound(rect.height() * factor)};
}

} // namespace

class tst_scaling : public QObject
{
    Q_OBJECT

private slots:
    void resolution_data();
    void resolution();
    void largeFont();
    void otherScreen_data();
    void otherScreen();
    void screensOfTheirOwn_data();
    void screensOfTheirOwn();
};

void tst_scaling::resolution_data()
{
    QTest::addColumn<QByteArray>("resources");
    QTest::addColumn<QString>("serverDpi"); // empty: the server's usual one
    QTest::addColumn<double>("factor");

    const QByteArray none;
    QTest::newRow("96 dpi") << QByteArray("Xft.dpi:\t96\n") << "" << 1.0;
    QTest::newRow("120 dpi") << QByteArray("Xft.dpi:\t120\n") << "" << 1.25;
    QTest::newRow("144 dpi") << QByteArray("Xft.dpi:\t144\n") << "" << 1.5;
    QTest::newRow("168 dpi") << QByteArray("Xft.dpi:\t168\n") << "" << 1.75;
    QTest::newRow("192 dpi") << QByteArray("Xft.dpi:\t192\n") << "" << 2.0;
    QTest::newRow("288 dpi") << QByteArray("Xft.dpi:\t288\n") << "" << 3.0;
    QTest::newRow("server reports 90") << none << "90" << 1.0;
    QTest::newRow("server reports 100") << none << "100" << 1.0;
    QTest::newRow("server reports 108") << none << "108" << 1.0;
}

void tst_scaling::resolution()
{
    QFETCH(QByteArray, resources);
    QFETCH(QString, serverDpi);
    QFETCH(double, factor);

    Desktop desktop;
    MUST(desktop.start(serverDpi.isEmpty() ? usualScreen : usualScreen + QStringList{"-dpi", serverDpi},
                       resources));
    Program program(desktop);
    MUST(program.start());
    const View view = program.look();
    const QRect window = times(QRect({}, layoutSize), factor);
    QCOMPARE(desktop.screen().sizeOf(view.mainWindow()), window.size());
    QCOMPARE(placeOf(view.widget("centralWidget")), window);
    QCOMPARE(placeOf(view.widget("progressBarUpdate")), times(layoutOfBar, factor));
    QCOMPARE(placeOf(view.widget("stopDownloadingFile")), times(layoutOfStop, factor));
    MUST(scenario::connectInVain(program)); // the mouse hits what is seen
    MUST(scenario::leave(program));
}

void tst_scaling::largeFont()
{
    Desktop desktop;
    MUST(desktop.start(usualScreen, "Xft.dpi:\t96\n"));
    Program program(desktop);
    MUST(program.placeFile("kdeglobals", "[General]\nfont=DejaVu Sans,24,-1,5,50,0,0,0,0,0\n"));
    program.setVariable("XDG_CURRENT_DESKTOP", "KDE");
    program.setVariable("KDE_SESSION_VERSION", "5");
    program.setVariable("XDG_CONFIG_HOME", program.ownPath("."));
    MUST(program.start());
    const View view = program.look();
    const double factor = view.window()["width"].toDouble() / layoutSize.width();
    QVERIFY2(factor > 2 && factor < 3, qPrintable(QString::number(factor)));
    // The row of buttons ends within the window.
    const QRect row = placeOf(view.widget("layoutWidget"));
    const QRect button = placeOf(view.widget("connect_button")).translated(row.topLeft());
    QVERIFY(QRect(QPoint(), desktop.screen().sizeOf(view.mainWindow())).contains(button));
    MUST(scenario::connectInVain(program));
}

void tst_scaling::otherScreen_data()
{
    QTest::addColumn<QByteArray>("resources");
    QTest::addColumn<QSize>("onFirst"); // in pixels of the screen
    QTest::addColumn<QSize>("onSecond");

    QTest::newRow("fonts for the first") << QByteArray("Xft.dpi:\t96\n") << layoutSize << layoutSize * 2;
    QTest::newRow("fonts for the second")
        << QByteArray("Xft.dpi:\t192\n") << layoutSize * 2 << layoutSize * 2;
}

void tst_scaling::otherScreen()
{
    QFETCH(QByteArray, resources);
    QFETCH(QSize, onFirst);
    QFETCH(QSize, onSecond);

    // Joined like this, the two begin at one point and the second reaches further right. With RANDR the
    // server would tell of one only.
    Desktop desktop;
    MUST(desktop.start(
        {"-extension", "RANDR", "+xinerama", "-screen", "0", "1000x1200x24", "-screen", "1", "3000x1200x24"},
        resources));
    Program program(desktop);
    program.setVariable("QT_SCREEN_SCALE_FACTORS", "1;2");
    MUST(program.start());
    const unsigned long window = program.look().mainWindow();
    XScreen& screen = desktop.screen();
    QTRY_COMPARE(screen.sizeOf(window), onFirst);
    screen.move(window, {1500, 100});
    QTRY_COMPARE(screen.sizeOf(window), onSecond);
    MUST(program.waitFor("the layout of the second screen", [](const View& view) {
        return placeOf(view.widget("progressBarUpdate")) == layoutOfBar;
    }));
    QCOMPARE(screen.sizeOf(window), onSecond);
}

void tst_scaling::screensOfTheirOwn_data()
{
    QTest::addColumn<QString>("factors"); // %1: the desktop's name
    QTest::addColumn<int>("screen");
    QTest::addColumn<QSize>("size"); // in pixels of the screen

    QTest::newRow("first, by name") << "%1.0=1;%1.1=2" << 0 << layoutSize;
    QTest::newRow("second, by name") << "%1.0=1;%1.1=2" << 1 << layoutSize * 2;
    // Qt counts from the screen that the program is started on.
    QTest::newRow("first, by order") << "1;2" << 0 << layoutSize;
    QTest::newRow("second, by order") << "2;1" << 1 << layoutSize * 2;
}

/// No window can be moved from one to the other. With RANDR both would have the same name.
void tst_scaling::screensOfTheirOwn()
{
    QFETCH(QString, factors);
    QFETCH(int, screen);
    QFETCH(QSize, size);

    Desktop desktop;
    MUST(
        desktop.start({"-extension", "RANDR", "-screen", "0", "1200x1000x24", "-screen", "1", "2000x1600x24"},
                      "Xft.dpi:\t96\n"));
    Program program(desktop);
    program.setScreen(screen);
    program.setVariable("QT_SCREEN_SCALE_FACTORS", factors.replace("%1", desktop.name()));
    MUST(program.start());
    const View view = program.look();
    QTRY_COMPARE(desktop.screen().sizeOf(view.mainWindow()), size);
    QCOMPARE(placeOf(view.widget("progressBarUpdate")), layoutOfBar);
}

QTEST_GUILESS_MAIN(tst_scaling)

#include "tst_scaling.moc"
