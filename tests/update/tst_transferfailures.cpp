#include "tests/support/boxlines.h"
#include "tests/support/programfiles.h"
#include "tests/support/rows.h"
#include "tests/support/texts.h"
#include "tests/support/transferdesk.h"
#include "tests/support/wire.h"

#include <QDir>
#include <QtTest>

namespace {

void resize(const QString& name, qint64 bytes)
{
    QFile file(name);
    if (!file.open(QIODevice::WriteOnly) || !file.resize(bytes))
        qFatal("cannot resize %s", qPrintable(name));
}

} // namespace

class TestTransferFailures : public QObject
{
    Q_OBJECT

private slots:
    void requestNotTaken();
    void requestToNoUnit();
    void dataPacketNotTaken_data();
    void dataPacketNotTaken();
    void finalPacketNotTaken();
    void unitUnpluggedInTheStream();
    void behindTheEndOfTheImage_data();
    void behindTheEndOfTheImage();
    void stateChangeFirstThenThatBox();
    void noImage_data();
    void noImage();
    void largestImage();
    void noImageThenNothingIsSent();
};

void TestTransferFailures::requestNotTaken()
{
    TransferDesk desk(UNIT_HB4);
    desk.load(imageOf(200));
    virtualbus::failNextWrites(desk.unit->number, 1);
    QString underTheBox;
    desk.window.boxes.whileOpen = [&](QMessageBox&) { underTheBox = desk.phase(); };
    desk.tick();
    QCOMPARE(desk.window.boxes.lines(), QStringList{boxline::noRequest});
    QCOMPARE(underTheBox, QString("0 0 0 0"));
    QCOMPARE(desk.phase(), QString("0 1 0 0"));
    desk.tick(2); // not written again: the installation is followed
    QCOMPARE(desk.writes().size(), std::size_t{1});
    QCOMPARE(desk.calls().filter("timeout=100").size(), 2);
    QCOMPARE(desk.window.boxes.lines().size(), 1);
}

void TestTransferFailures::requestToNoUnit()
{
    TransferDesk desk(UNIT_HB4);
    desk.loseHandle();
    desk.writeRequest();
    QCOMPARE(desk.window.boxes.lines(), QStringList{boxline::noRequest});
    QCOMPARE(desk.phase(), QString("0 1 0 0"));
    QCOMPARE(desk.calls(), QStringList{}); // the library never sees a null handle
}

void TestTransferFailures::dataPacketNotTaken_data()
{
    QTest::addColumn<int>("failures");
    QTest::newRow("once: the second write is taken") << 1;
    QTest::newRow("twice: the packet is given up") << 2;
}

void TestTransferFailures::dataPacketNotTaken()
{
    QFETCH(int, failures);
    TransferDesk desk(UNIT_HB4);
    const QByteArray image = imageOf(240);
    const std::vector<Bytes> packets = packetsOf(models::hb4, image);
    desk.startStream(image);
    virtualbus::failNextWrites(desk.unit->number, failures);
    desk.tick(2);
    const std::vector<Bytes> written = desk.writes();
    QCOMPARE(written.size(), std::size_t{5}); // request, 1, 2, 2 again, 3
    QCOMPARE(hexOf(written[2]), hexOf(packets[1]));
    QCOMPARE(hexOf(written[3]), hexOf(packets[1]));
    QCOMPARE(hexOf(written[4]), hexOf(packets[2]));
    QCOMPARE(desk.phase(), QString("1 0 1 3"));
    QCOMPARE(desk.window.boxes.lines(), QStringList{});
}

void TestTransferFailures::finalPacketNotTaken()
{
    TransferDesk desk(UNIT_HB4);
    const QByteArray image = imageOf(70);
    desk.startStream(image);
    virtualbus::failNextWrites(desk.unit->number, 9);
    desk.tick();
    QCOMPARE(desk.writes().size(), std::size_t{4}); // request, 1, final, final again
    QCOMPARE(hexOf(desk.writes()[3]), hexOf(packetsOf(models::hb4, image)[1]));
    QCOMPARE(desk.phase(), QString("0 1 1 0"));
    QCOMPARE(desk.window.boxes.lines(), QStringList{});
}

void TestTransferFailures::unitUnpluggedInTheStream()
{
    TransferDesk desk(UNIT_HB4);
    desk.startStream(imageOf(240));
    virtualbus::unplug(desk.unit->number);
    desk.tick(4); // 2, 3, 4 and the final one, each written twice in vain
    QCOMPARE(desk.writes().size(), std::size_t{2 + 4 * 2});
    QCOMPARE(desk.phase(), QString("0 1 1 0"));
    desk.tick(3); // polls that fail at once
    QCOMPARE(desk.window.boxes.lines(), QStringList{});
}

void TestTransferFailures::behindTheEndOfTheImage_data()
{
    const Rows<UnitType, QByteArray> row("type", "packet");
    const QByteArray zeroData(120, '0');
    row("older family", UNIT_HB4, "0000000004" + zeroData);
    row("player", UNIT_PLT65, "00" + zeroData + "00000004");
}

/// Cannot come about by itself: the counters start anew with the final packet.
void TestTransferFailures::behindTheEndOfTheImage()
{
    QFETCH(UnitType, type);
    TransferDesk desk(type);
    desk.startStream(imageOf(100));
    desk.skipTo(3);
    desk.tick();
    QCOMPARE(desk.window.boxes.lines(), QStringList{boxline::behindTheEnd});
    QTEST(hexOf(desk.writes().back()), "packet");
    QCOMPARE(desk.writes().size(), std::size_t{3});
    QCOMPARE(desk.phase(), QString("0 1 1 0"));
}

void TestTransferFailures::stateChangeFirstThenThatBox()
{
    TransferDesk desk(UNIT_HB4);
    desk.startStream(imageOf(100));
    desk.skipTo(3);
    QString underTheBox;
    std::size_t writesUnderTheBox = 0;
    desk.window.boxes.whileOpen = [&](QMessageBox&) {
        underTheBox = desk.phase();
        writesUnderTheBox = desk.writes().size();
    };
    desk.tick();
    QCOMPARE(underTheBox, QString("0 1 1 0"));
    QCOMPARE(writesUnderTheBox, std::size_t{2}); // the packet follows the box
}

void TestTransferFailures::noImage_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("no such file") << besideProgram("nowhere.sb");
    QTest::newRow("a directory") << QDir::tempPath();
    QTest::newRow("no file name") << QString();
    QTest::newRow("empty") << besideProgram(filename::image);
    QTest::newRow("one byte more than any image can have") << besideProgram(filename::download);
}

void TestTransferFailures::noImage()
{
    QFETCH(QString, name);
    TransferDesk desk(UNIT_HB4);
    placeFile(filename::image, "");
    resize(besideProgram(filename::download), 64 * 1024 * 1024 + 1);
    desk.window->onChangeUpdateFileName(name);
    desk.load(imageOf(200)); // of an earlier update
    desk.window->updateDevice();
    QCOMPARE(desk.window.boxes.lines(), QStringList{boxline::noFile});
    desk.tick();
    QCOMPARE(desk.phase(), QString("0 1 0 0"));
    QCOMPARE(desk.writes().size(), std::size_t{0});
}

void TestTransferFailures::largestImage()
{
    TransferDesk desk(UNIT_HB4);
    resize(besideProgram(filename::download), 64 * 1024 * 1024);
    desk.window->onChangeUpdateFileName(besideProgram(filename::download));
    desk.window->updateDevice();
    QCOMPARE(desk.window.boxes.lines(), QStringList{});
    desk.tick();
    const QByteArray digest = wire::digestOf(QByteArray(64 * 1024 * 1024, '\0'));
    QVERIFY(desk.writes().front() == bytesOf(wire::request(models::hb4, digest)));
}

/// The timer starts all the same and goes straight to following the installation.
void TestTransferFailures::noImageThenNothingIsSent()
{
    TransferDesk desk(UNIT_HB4);
    desk.window->onChangeUpdateFileName(besideProgram("nowhere.sb"));
    QString underTheBox;
    desk.window.boxes.whileOpen = [&](QMessageBox&) { underTheBox = desk.phase(); };
    desk.window->updateDevice();
    QCOMPARE(underTheBox, QString("0 0 0 0"));
    QTRY_VERIFY(desk.calls().size() >= 2);
    for (const QString& call : desk.calls())
        QCOMPARE(call, QString("hid_read_timeout handle=1 length=64 timeout=100 result=0"));
}

QTEST_MAIN(TestTransferFailures)
#include "tst_transferfailures.moc"
