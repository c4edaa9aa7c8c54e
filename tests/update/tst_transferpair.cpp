#include "tests/support/boxlines.h"
#include "tests/support/rows.h"
#include "tests/support/texts.h"
#include "tests/support/transferdesk.h"

#include <QtTest>

namespace {

/// Both decks of a player; handle 1 is `device`, handle 2 `secondDevice`.
struct Pair : TransferDesk
{
    Pair() : TransferDesk(UNIT_TRK300_RIGHT, UNIT_TRK300_LEFT) {}
};

} // namespace

class TestTransferPair : public QObject
{
    Q_OBJECT

private slots:
    void requestGoesToBoth();
    void requestNotTaken_data();
    void requestNotTaken();
    void answers_data();
    void answers();
    void answersOfDifferentTicks();
    void displayStaysAsItWas();
    void packetsGoToBoth_data();
    void packetsGoToBoth();
    void packetNotTaken_data();
    void packetNotTaken();
    void deckWithoutHandle();
};

void TestTransferPair::requestGoesToBoth()
{
    Pair pair;
    pair.load("abc");
    pair.tick(2);
    QCOMPARE(pair.calls(), (QStringList{
                               "hid_read_timeout handle=1 length=64 timeout=1 result=0",
                               "hid_read_timeout handle=2 length=64 timeout=1 result=0",
                               "hid_write handle=1 length=65 result=65",
                               "hid_write handle=2 length=65 result=65",
                               "hid_read_timeout handle=1 length=64 timeout=1 result=0",
                               "hid_read_timeout handle=2 length=64 timeout=1 result=0",
                           }));
    QCOMPARE(hexOf(pair.writes().front()), "0000" + QByteArray("900150983cd24fb0d6963f7d28e17f72").toHex() +
                                               QByteArray(2 * 27, '0') + "80000000");
    QVERIFY(pair.writes() == pair.secondWrites());
}

void TestTransferPair::requestNotTaken_data()
{
    const Rows<bool, bool, QString, int> row("firstFails", "secondFails", "phase", "boxes");
    row("by the first deck", true, false, "0 1 1 0", 1);
    row("by the second deck", false, true, "0 1 1 0", 1);
    row("by neither", true, true, "0 1 0 0", 2);
}

void TestTransferPair::requestNotTaken()
{
    QFETCH(bool, firstFails);
    QFETCH(bool, secondFails);
    QFETCH(int, boxes);
    Pair pair;
    pair.load(imageOf(200));
    virtualbus::failNextWrites(pair.unit->number, firstFails ? 1 : 0);
    virtualbus::failNextWrites(pair.second->number, secondFails ? 1 : 0);
    pair.tick();
    QTEST(pair.phase(), "phase");
    QCOMPARE(pair.writes().size(), std::size_t{1});
    QCOMPARE(pair.secondWrites().size(), std::size_t{1});
    QCOMPARE(pair.window.boxes.lines(), boxline::repeated(boxes, boxline::noRequest));
}

void TestTransferPair::answers_data()
{
    const QString waiting = "0 0 1 0";
    const QString streaming = "1 0 1 1";
    const QString over = "0 1 1 0";
    const Rows<int, int, QString, QStringList> row("first", "second", "phase", "boxes");
    row("first accepts, second idle", 0x95, 0x05, streaming, {});
    row("second accepts, first idle", 0x05, 0x95, streaming, {});
    row("both accept", 0x95, 0x95, streaming, {});
    row("both idle", 0x05, 0x05, waiting, {});
    row("only the first says anything", 0x95, TransferDesk::silent, waiting, {});
    row("only the second says anything", TransferDesk::silent, 0x95, waiting, {});
    row("only the first refuses", 0xA5, TransferDesk::silent, waiting, {});
    row("first timed out", 0xA5, 0x05, over, {boxline::timedOut});
    row("second timed out", 0x05, 0xA5, over, {boxline::timedOut});
    row("both timed out: one box", 0xA5, 0xA5, over, {boxline::timedOut});
    row("first skipped", 0xB5, 0x05, over, {boxline::skipped});
    row("second skipped", 0x05, 0xB5, over, {boxline::skipped});
    row("each refuses in its own way", 0xB5, 0xA5, over, {boxline::timedOut, boxline::skipped});
    row("one accepts, one refuses", 0x95, 0xA5, over, {boxline::timedOut});
    row("a status of the installation", 0xE5, 0xF5, waiting, {});
}

void TestTransferPair::answers()
{
    QFETCH(int, first);
    QFETCH(int, second);
    QFETCH(QStringList, boxes);
    Pair pair;
    pair.writeRequest();
    pair.sayStatus(first, second);
    pair.tick();
    QTEST(pair.phase(), "phase");
    QCOMPARE(pair.window.boxes.lines(), boxes);
}

/// An answer that comes alone is taken and lost.
void TestTransferPair::answersOfDifferentTicks()
{
    Pair pair;
    pair.writeRequest();
    pair.sayStatus(0x95, TransferDesk::silent);
    pair.tick();
    pair.sayStatus(TransferDesk::silent, 0x95);
    pair.tick();
    QCOMPARE(pair.phase(), QString("0 0 1 0"));
    pair.sayStatus(0x95, 0x05);
    pair.tick();
    QCOMPARE(pair.phase(), QString("1 0 1 1"));
}

void TestTransferPair::displayStaysAsItWas()
{
    Pair pair;
    const QStringList before = pair.window.controls();
    pair.startStream(imageOf(200));
    QCOMPARE(pair.window.controls(), before);
    QVERIFY(!pair.window.bar("progressBarTransfer").isEnabled());
    QCOMPARE(pair.window.label("labelTransfer").text(), QString(text::transferIdle));
    pair.tick();
    QCOMPARE(pair.window.bar("progressBarTransfer").value(), 30); // the bar moves all the same
}

void TestTransferPair::packetsGoToBoth_data()
{
    QTest::addColumn<int>("size");
    for (const int size : {59, 60, 61, 1200})
        QTest::addRow("%d bytes", size) << size;
}

void TestTransferPair::packetsGoToBoth()
{
    QFETCH(int, size);
    Pair pair;
    const QByteArray image = imageOf(size);
    pair.startStream(image);
    pair.tick(size / 60);
    QVERIFY(pair.writes() == pair.secondWrites());
    QVERIFY(pair.packets() == packetsOf(models::plt70, image));
    QCOMPARE(pair.phase(), QString("0 1 1 0"));
}

void TestTransferPair::packetNotTaken_data()
{
    const Rows<int, int> row("firstFailures", "secondFailures");
    row("by the first deck", 1, 0);
    row("by the second deck", 0, 1);
    row("by neither", 1, 1);
}

/// Nothing is written a second time to a pair.
void TestTransferPair::packetNotTaken()
{
    QFETCH(int, firstFailures);
    QFETCH(int, secondFailures);
    Pair pair;
    const QByteArray image = imageOf(240);
    pair.startStream(image);
    virtualbus::failNextWrites(pair.unit->number, firstFailures);
    virtualbus::failNextWrites(pair.second->number, secondFailures);
    pair.tick(2);
    QVERIFY(pair.writes() == pair.secondWrites());
    const std::vector<Bytes> packets = packetsOf(models::plt70, image);
    QVERIFY(pair.packets() == std::vector<Bytes>(packets.begin(), packets.begin() + 3));
    QCOMPARE(pair.phase(), QString("1 0 1 3"));
    QCOMPARE(pair.window.boxes.lines(), QStringList{});
}

/// The other deck gets the request; nothing can accept it.
void TestTransferPair::deckWithoutHandle()
{
    Pair pair;
    pair.loseHandle();
    pair.writeRequest();
    QCOMPARE(pair.window.boxes.lines(), QStringList{boxline::noRequest});
    QCOMPARE(pair.phase(), QString("0 1 1 0"));
    QCOMPARE(pair.calls(), (QStringList{"hid_read_timeout handle=2 length=64 timeout=1 result=0",
                                        "hid_write handle=2 length=65 result=65"}));
}

QTEST_MAIN(TestTransferPair)
#include "tst_transferpair.moc"
