#include "base/percent.h"
#include "tests/support/rows.h"

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
    const Rows<qint64, qint64, int> row("done", "total", "shown");
    row("nothing yet", 0, 7, 0);
    row("all", 7, 7, 100);
    row("truncated, not rounded", 2, 3, 66);
    row("one byte short of all", 14999999, 15000000, 99);
    row("more than all is not clamped", 5, 2, 250);
    row("total unknown: -1", 1234, -1, -123400);
    row("truncated towards zero below it", -2, 3, -66);
    row("no total", 5, 0, 0);
    row("nothing of no total", 0, 0, 0);
    row("more than int holds", 3000000000, 1, mostShown);
    row("less than int holds", -3000000000, 1, leastShown);
    row("largest numbers, half", most / 2, most, 50);
    row("largest numbers, all", most, most, 100);
    row("smallest numbers, all", least, least, 100);
    row("smallest of largest", least, most, -100);
    row("largest of one", most, 1, mostShown);
    row("largest of ninety-nine", most, 99, mostShown);
    row("largest of minus one", most, -1, leastShown);
    row("smallest of minus one", least, -1, mostShown);
    row("largest of nothing", most, 0, 0);
}

void TestPercent::rows()
{
    QFETCH(qint64, done);
    QFETCH(qint64, total);
    QTEST(percent(done, total), "shown");
}

QTEST_APPLESS_MAIN(TestPercent)
#include "tst_percent.moc"
