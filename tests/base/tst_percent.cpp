#include "base/percent.h"

#include <QtTest>

class TestPercent : public QObject
{
    Q_OBJECT

private slots:
    void rows_data();
    void rows();
};

void TestPercent::rows_data()
{
    constexpr qint64 most = std::numeric_limits<qint64>::max();
    constexpr qint64 least = std::numeric_limits<qint64>::min();
    constexpr int mostShown = std::numeric_limits<int>::max();
    constexpr int leastShown = std::numeric_limits<int>::min();
    QTest::addColumn<qint64>("done");
    QTest::addColumn<qint64>("total");
    QTest::addColumn<int>("shown");
    QTest::newRow("nothing yet") << qint64{0} << qint64{7} << 0;
    QTest::newRow("all") << qint64{7} << qint64{7} << 100;
    QTest::newRow("truncated, not rounded") << qint64{2} << qint64{3} << 66;
    QTest::newRow("one byte short of all") << qint64{14999999} << qint64{15000000} << 99;
    QTest::newRow("more than all is not clamped") << qint64{5} << qint64{2} << 250;
    QTest::newRow("total unknown: -1") << qint64{1234} << qint64{-1} << -123400;
    QTest::newRow("truncated towards zero below it") << qint64{-2} << qint64{3} << -66;
    QTest::newRow("no total") << qint64{5} << qint64{0} << 0;
    QTest::newRow("nothing of no total") << qint64{0} << qint64{0} << 0;
    QTest::newRow("more than int holds") << qint64{3000000000} << qint64{1} << mostShown;
    QTest::newRow("less than int holds") << qint64{-3000000000} << qint64{1} << leastShown;
    QTest::newRow("largest numbers, half") << most / 2 << most << 50;
    QTest::newRow("largest numbers, all") << most << most << 100;
    QTest::newRow("smallest numbers, all") << least << least << 100;
    QTest::newRow("smallest of largest") << least << most << -100;
    QTest::newRow("largest of one") << most << qint64{1} << mostShown;
    QTest::newRow("largest of ninety-nine") << most << qint64{99} << mostShown;
    QTest::newRow("largest of minus one") << most << qint64{-1} << leastShown;
    QTest::newRow("smallest of minus one") << least << qint64{-1} << mostShown;
    QTest::newRow("largest of nothing") << most << qint64{0} << 0;
}

void TestPercent::rows()
{
    QFETCH(qint64, done);
    QFETCH(qint64, total);
    QFETCH(int, shown);
    QCOMPARE(percent(done, total), shown);
}

QTEST_APPLESS_MAIN(TestPercent)
#include "tst_percent.moc"
