#include "tests/support/boxlines.h"
#include "tests/support/rows.h"
#include "tests/support/texts.h"
#include "tests/support/transferdesk.h"

#include <QtTest>

class TestTransferAnswers : public QObject
{
    Q_OBJECT

private slots:
    void status_data();
    void status();
    void placeOfTheStatus_data();
    void placeOfTheStatus();
    void failingReads();
    void oneReportATick();
    void refusalBeforeTheRequest_data();
    void refusalBeforeTheRequest();
    void boxFirstThenItsStateChange_data() { refusalBeforeTheRequest_data(); }
    void boxFirstThenItsStateChange();
};

void TestTransferAnswers::status_data()
{
    QTest::addColumn<UnitType>("type");
    QTest::addColumn<int>("status");
    QTest::addColumn<QString>("phase");
    QTest::addColumn<QStringList>("boxes");
    for (int byte = 0; byte <= 0xFF; ++byte) {
        const int nibble = byte >> 4;
        QString phase = "0 0 1 0"; // ignored
        QStringList boxes;
        if (nibble == 0x9)
            phase = "1 0 1 1";
        if (nibble == 0xA || nibble == 0xB) {
            phase = "0 1 1 0";
            boxes = QStringList{nibble == 0xA ? boxline::timedOut : boxline::skipped};
        }
        QTest::addRow("older family, 0x%02X", byte) << UNIT_HB4 << byte << phase << boxes;
        QTest::addRow("player, 0x%02X", byte) << UNIT_PLT65 << byte << phase << boxes;
    }
}

void TestTransferAnswers::status()
{
    QFETCH(UnitType, type);
    QFETCH(int, status);
    QFETCH(QString, phase);
    QFETCH(QStringList, boxes);
    TransferDesk desk(type);
    desk.writeRequest();
    desk.skipTo(boxes.isEmpty() ? 0 : 7); // an error sets it back
    desk.sayStatus(status);
    desk.tick();
    QCOMPARE(desk.phase(), phase);
    QCOMPARE(desk.window.boxes.lines(), boxes);
    const bool accepted = phase.startsWith('1');
    QCOMPARE(desk.writes().size(), std::size_t{accepted ? 2U : 1U});
    QCOMPARE(desk.window.label("labelTransfer").text(),
             QString(accepted ? text::transferInProgress : text::transferIdle));
}

void TestTransferAnswers::placeOfTheStatus_data()
{
    const Rows<UnitType, QByteArray, bool> row("type", "report", "accepted");
    const auto statusAt = [](int index) { return QByteArray(64, '\0').replace(index, 1, "\x90"); };
    row("older family: not at 60", UNIT_HB4, statusAt(60), false);
    row("older family: not behind the first byte", UNIT_HB4, statusAt(1), false);
    row("older family: no byte at all", UNIT_HB4, "", false);
    row("older family: the status alone", UNIT_HB4, "\x90", true);
    row("player: not in front", UNIT_PLT65, statusAt(0), false);
    row("player: not at 61", UNIT_PLT65, statusAt(61), false);
    row("player: all but the header", UNIT_PLT65, QByteArray(60, '\x90'), false);
    row("player: up to the status", UNIT_PLT65, QByteArray(61, '\x90'), true);
}

void TestTransferAnswers::placeOfTheStatus()
{
    QFETCH(UnitType, type);
    QFETCH(QByteArray, report);
    QFETCH(bool, accepted);
    TransferDesk desk(type);
    desk.writeRequest();
    desk.unit->say(bytesOf(report));
    desk.tick();
    QCOMPARE(desk.phase(), QString(accepted ? "1 0 1 1" : "0 0 1 0"));
    QCOMPARE(desk.writes().size(), std::size_t{accepted ? 2U : 1U});
}

void TestTransferAnswers::failingReads()
{
    TransferDesk desk(UNIT_HB4);
    desk.writeRequest();
    virtualbus::failReads(desk.unit->number, true);
    desk.sayStatus(0x90);
    desk.tick(5);
    QCOMPARE(desk.phase(), QString("0 0 1 0"));
    QCOMPARE(desk.window.boxes.lines(), QStringList{});
    virtualbus::failReads(desk.unit->number, false);
    desk.tick();
    QCOMPARE(desk.phase(), QString("1 0 1 1"));
}

/// Reports from before the request stand in front of the answer.
void TestTransferAnswers::oneReportATick()
{
    TransferDesk desk(UNIT_HB4);
    desk.load(imageOf(200));
    for (int i = 0; i < 5; ++i)
        desk.sayStatus(0x05);
    desk.sayStatus(0x95);
    desk.tick(5);
    QCOMPARE(desk.phase(), QString("0 0 1 0"));
    desk.tick();
    QCOMPARE(desk.phase(), QString("1 0 1 1"));
}

void TestTransferAnswers::refusalBeforeTheRequest_data()
{
    const Rows<int, QString> row("status", "box");
    row("timed out", 0xA5, boxline::timedOut);
    row("packets skipped", 0xB5, boxline::skipped);
}

/// An old refusal ends the transfer, too; the request of that very tick still goes out.
void TestTransferAnswers::refusalBeforeTheRequest()
{
    QFETCH(int, status);
    QFETCH(QString, box);
    TransferDesk desk(UNIT_HB4);
    desk.load(imageOf(200));
    desk.sayStatus(status);
    desk.tick();
    QCOMPARE(desk.window.boxes.lines(), QStringList{box});
    QCOMPARE(desk.phase(), QString("0 1 1 0"));
    QCOMPARE(desk.writes().size(), std::size_t{1});
}

void TestTransferAnswers::boxFirstThenItsStateChange()
{
    QFETCH(int, status);
    TransferDesk desk(UNIT_HB4);
    desk.writeRequest();
    desk.skipTo(3);
    QString underTheBox;
    desk.window.boxes.whileOpen = [&](QMessageBox&) { underTheBox = desk.phase(); };
    desk.sayStatus(status);
    desk.tick();
    QCOMPARE(underTheBox, QString("0 0 1 3"));
    QCOMPARE(desk.phase(), QString("0 1 1 0"));
}

QTEST_MAIN(TestTransferAnswers)
#include "tst_transferanswers.moc"
