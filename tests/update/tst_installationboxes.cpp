#include "tests/support/boxlines.h"
#include "tests/support/rows.h"
#include "tests/support/texts.h"
#include "tests/support/ticks.h"
#include "tests/support/transferdesk.h"

#include <QDeadlineTimer>
#include <QThread>
#include <QTimer>
#include <QtTest>

using Script = std::function<void()>;
using Statuses = QList<std::pair<int, int>>; ///< each with the number of times it is said

namespace {

constexpr int mostBoxes = 16;

/// The transfer's own timer follows the installation; boxes stay until a script dismisses them. A box holds
/// up whatever ran on the GUI thread before it, so scripts run beside it, on a thread of their own, as a user
/// does.
class RunningInstallation : public TransferDesk
{
public:
    RunningInstallation() : TransferDesk(UNIT_HB4)
    {
        placeFile(filename::image, imageOf(10));
        followInstallation();
        window.boxes.leaveOpen();
        window->updateDevice();
    }

    /// Runs a script to its end, then dismisses the boxes that it left. True if the program quit meanwhile.
    bool follow(const Script& script)
    {
        const std::unique_ptr<QThread> user(QThread::create([this, script] {
            script();
            dismissAll();
        }));
        QObject ending;
        QObject::connect(user.get(), &QThread::finished, &ending, [&ending] {
            QTimer::singleShot(0, &ending, [] { QCoreApplication::exit(1); }); // a quit under way goes first
        });
        user->start();
        const bool quit = QCoreApplication::exec() == 0;
        while (!user->isFinished())
            passTicks(1); // what the script still asks of the GUI thread is answered
        return quit;
    }

    // For scripts:

    /// Says `status` so many times, and waits until that is read and shown. Returns the number of open boxes.
    int say(int status, int times = 1)
    {
        for (int i = 0; i < times; ++i)
            sayOnce(status);
        const int upToHere = said;
        awaitOnGui([&] { return reportsRead() >= upToHere && isSettled(); });
        return onGui([this] { return window.boxes.openCount(); });
    }

    /// Dismisses the box on top. Returns the number of boxes that stay.
    int dismiss()
    {
        const int before = onGui([this] { return window.boxes.openCount(); });
        onGui([this] { window.boxes.dismissTop(); });
        awaitOnGui([&] { return window.boxes.openCount() < before && isSettled(); });
        return onGui([this] { return window.boxes.openCount(); });
    }

    void dismissAll()
    {
        onGui([this] { window.boxes.answerWith(QMessageBox::Ok); });
        awaitOnGui([this] { return window.boxes.openCount() == 0; });
    }

    /// Has the GUI thread answer a question; an idle report wakes it from its poll.
    template<typename Ask> auto onGui(Ask ask) -> decltype(ask())
    {
        if (reportsRead() >= said)
            sayOnce(0x05);
        if constexpr (std::is_void_v<decltype(ask())>) {
            QMetaObject::invokeMethod(qApp, ask, Qt::BlockingQueuedConnection);
        } else {
            decltype(ask()) answer{};
            QMetaObject::invokeMethod(
                qApp, [&] { answer = ask(); }, Qt::BlockingQueuedConnection);
            return answer;
        }
    }

private:
    void sayOnce(int status)
    {
        sayStatus(status);
        ++said;
    }

    void awaitOnGui(const std::function<bool()>& condition)
    {
        const QDeadlineTimer deadline(limits::hang());
        while (!onGui(condition) && !deadline.hasExpired())
            QThread::msleep(1); // between two looks
    }

    [[nodiscard]] int reportsRead() const { return calls().filter("result=64").size(); }
    [[nodiscard]] bool isSettled() const
    {
        return window.boxes.openCount() == window.state().installationBoxes;
    }

    int said = 0; ///< reports so far; the script's thread only
};

} // namespace

class TestInstallationBoxes : public QObject
{
    Q_OBJECT

private slots:
    void repeatedStatusOpensFurtherBoxes_data();
    void repeatedStatusOpensFurtherBoxes();
    void openBoxes_data();
    void openBoxes();
    void roomAfterADismissal();
    void creepingGoesOnUnderABox();
    void startUnderABox();
};

void TestInstallationBoxes::repeatedStatusOpensFurtherBoxes_data()
{
    const Rows<int, QString> row("status", "shown");
    row("wrong digest", 0xC0, text::wrongDigest);
    row("rejected", 0x70, text::rejected);
}

void TestInstallationBoxes::repeatedStatusOpensFurtherBoxes()
{
    QFETCH(int, status);
    QFETCH(QString, shown);
    RunningInstallation desk;
    QList<int> open;
    QVERIFY(!desk.follow([&] {
        for (int i = 0; i < 3; ++i)
            open += desk.say(status);
        for (int i = 0; i < 3; ++i)
            open += desk.dismiss();
    }));
    QCOMPARE(open, (QList<int>{1, 2, 3, 2, 1, 0}));
    QCOMPARE(desk.window.boxes.seen().size(), std::size_t{3});
    for (const SeenBox& box : desk.window.boxes.seen())
        QCOMPARE(box.text, shown);
}

void TestInstallationBoxes::openBoxes_data()
{
    const Rows<Statuses, QList<int>, QStringList> row("said", "open", "boxes");
    row("sixteen at most", {{0xC0, 15}, {0xC0, 1}, {0xC0, 10}, {0x70, 1}}, {15, 16, 16, 16},
        boxline::repeated(16, boxline::wrongDigest));
    row("finished under an error", {{0xC0, 1}, {0xF0, 1}}, {1, 2}, {boxline::wrongDigest, boxline::finished});
    row("finished twice", {{0xF0, 1}, {0xF0, 1}}, {1, 2}, boxline::repeated(2, boxline::finished));
    row("finished many times", {{0xF0, 20}}, {16}, boxline::repeated(16, boxline::finished));
    // The good end is no repeat: it is told, and ends the program, whatever is open.
    row("finished under sixteen errors", {{0x70, 20}, {0xF0, 1}, {0xF0, 1}}, {16, 17, 17},
        boxline::repeated(16, boxline::rejected) + QStringList{boxline::finished});
}

void TestInstallationBoxes::openBoxes()
{
    QFETCH(Statuses, said);
    QFETCH(QStringList, boxes);
    RunningInstallation desk;
    QList<int> open;
    const bool quit = desk.follow([&] {
        for (const auto& [status, times] : said)
            open += desk.say(status, times);
    });
    QTEST(open, "open");
    QCOMPARE(desk.window.boxes.lines(), boxes);
    QCOMPARE(quit, boxes.contains(boxline::finished));
}

void TestInstallationBoxes::roomAfterADismissal()
{
    RunningInstallation desk;
    QList<int> open;
    desk.follow([&] {
        open << desk.say(0xC0, 20) << desk.dismiss();
        open << desk.say(0x05); // what was ignored does not come back
        open << desk.say(0x70, 2);
    });
    QCOMPARE(open, (QList<int>{16, 15, 15, 16}));
    QCOMPARE(desk.window.boxes.seen().size(), std::size_t{17});
    QCOMPARE(desk.window.boxes.seen().back().text, QString(text::rejected));
}

void TestInstallationBoxes::creepingGoesOnUnderABox()
{
    RunningInstallation desk;
    int open = 0;
    int before = 0;
    int after = 0;
    desk.follow([&] {
        desk.say(0xE0);
        desk.say(0xC0);
        before = desk.onGui([&] { return desk.window.bar("progressBarUpdate").value(); });
        open = desk.say(0x05, 10); // ten ticks, five steps
        after = desk.onGui([&] { return desk.window.bar("progressBarUpdate").value(); });
    });
    QCOMPARE(open, 1);
    QVERIFY2(after >= before + 4, qPrintable(QString("%1 to %2").arg(before).arg(after)));
}

void TestInstallationBoxes::startUnderABox()
{
    RunningInstallation desk;
    QList<int> open;
    QString label;
    desk.follow([&] {
        open << desk.say(0xC0) << desk.say(0xE0);
        label = desk.onGui([&] { return desk.window.label("labelTransfer").text(); });
    });
    QCOMPARE(open, (QList<int>{1, 1}));
    QCOMPARE(label, QString(text::transferCompleted));
}

QTEST_MAIN(TestInstallationBoxes)
#include "tst_installationboxes.moc"
