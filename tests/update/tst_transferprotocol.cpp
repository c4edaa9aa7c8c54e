#include "tests/support/rows.h"
#include "tests/support/testimage.h"
#include "update/transferprotocol.h"

#include <QtTest>

#include <algorithm>

using transferprotocol::ImageBytes;
using transferprotocol::PacketKind;
Q_DECLARE_METATYPE(PacketKind)
Q_DECLARE_METATYPE(ReportLayout)

namespace {

constexpr const char* digestOfAbc = "900150983cd24fb0d6963f7d28e17f72";

QByteArray hex(const report::Output& bytes)
{
    return QByteArray(reinterpret_cast<const char*>(bytes.data()), static_cast<int>(bytes.size())).toHex();
}

ImageBytes span(const QByteArray& bytes)
{
    return {reinterpret_cast<const unsigned char*>(bytes.constData()),
            static_cast<std::size_t>(bytes.size())};
}

QByteArray zeros(int bytes)
{
    return QByteArray(2 * bytes, '0');
}

} // namespace

class TestTransferProtocol : public QObject
{
    Q_OBJECT

private slots:
    void request_data();
    void request();
    void dataPacket_data();
    void dataPacket();
    void finalPacket_data();
    void finalPacket();
    void overlongDataIsCutToThePacket();
    void bytesLeft_data();
    void bytesLeft();
    void packetKind_data();
    void packetKind();
    void packetBytes_data();
    void packetBytes();
    void percent_data();
    void percent();
};

void TestTransferProtocol::request_data()
{
    const QByteArray digest = QByteArray(digestOfAbc).toHex();
    const Rows<ReportLayout, QByteArray> row("layout", "packet");
    row("older family: command, digest behind it", layoutA, "0080" + digest + zeros(31));
    row("player: digest one byte into the data, command at 61", layoutB,
        "0000" + digest + zeros(27) + "80" + zeros(3));
}

void TestTransferProtocol::request()
{
    QFETCH(ReportLayout, layout);
    QTEST(hex(transferprotocol::buildTransferRequest(layout, digestOfAbc)), "packet");
}

void TestTransferProtocol::dataPacket_data()
{
    const QByteArray data = imageOf(60);
    const Rows<ReportLayout, quint32, QByteArray, QByteArray> row("layout", "number", "data", "packet");
    row("older family: first packet", layoutA, 1U, data, "0000000001" + data.toHex());
    row("player: first packet", layoutB, 1U, data, "00" + data.toHex() + "00000001");
    row("older family: packet 74565", layoutA, 74565U, data, "0000012345" + data.toHex());
    row("player: packet 74565", layoutB, 74565U, data, "00" + data.toHex() + "00012345");
    row("older family: number in 28 bits", layoutA, 0xFEDCBA98U, data, "000edcba98" + data.toHex());
    row("player: number in 28 bits", layoutB, 0xFEDCBA98U, data, "00" + data.toHex() + "0edcba98");
    row("older family: no data at all", layoutA, 3U, {}, "0000000003" + zeros(60));
    row("player: no data at all", layoutB, 3U, {}, "00" + zeros(60) + "00000003");
}

void TestTransferProtocol::dataPacket()
{
    QFETCH(ReportLayout, layout);
    QFETCH(quint32, number);
    QFETCH(QByteArray, data);
    QTEST(hex(transferprotocol::buildDataPacket(layout, number, span(data))), "packet");
}

void TestTransferProtocol::finalPacket_data()
{
    const Rows<ReportLayout, quint32, QByteArray, QByteArray> row("layout", "number", "data", "packet");
    const QByteArray most = imageOf(59);
    row("older family: 59 bytes are packet 1", layoutA, 1U, most, "00d03b0001" + most.toHex() + "00");
    row("player: 59 bytes are packet 1", layoutB, 1U, most, "00" + most.toHex() + "00d03b0001");
    row("older family: no bytes behind two full packets", layoutA, 3U, {}, "00d0000003" + zeros(60));
    row("player: no bytes behind two full packets", layoutB, 3U, {}, "00" + zeros(60) + "d0000003");
    row("older family: one byte", layoutA, 2U, "\x7F", "00d00100027f" + zeros(59));
    row("player: one byte", layoutB, 2U, "\x7F", "007f" + zeros(59) + "d0010002");
    row("older family: low 16 bits of 74565", layoutA, 74565U, "\x7F", "00d00123457f" + zeros(59));
    row("player: low 16 bits of 74565", layoutB, 74565U, "\x7F", "007f" + zeros(59) + "d0012345");
}

void TestTransferProtocol::finalPacket()
{
    QFETCH(ReportLayout, layout);
    QFETCH(quint32, number);
    QFETCH(QByteArray, data);
    QTEST(hex(transferprotocol::buildFinalPacket(layout, number, span(data))), "packet");
}

void TestTransferProtocol::overlongDataIsCutToThePacket()
{
    const QByteArray data = imageOf(61);
    const QByteArray expected = data.left(60).toHex();
    QCOMPARE(hex(transferprotocol::buildDataPacket(layoutA, 1, span(data))), "0000000001" + expected);
    QCOMPARE(hex(transferprotocol::buildDataPacket(layoutB, 1, span(data))), "00" + expected + "00000001");
}

void TestTransferProtocol::bytesLeft_data()
{
    const Rows<qint64, int, qint64> row("imageSize", "number", "left");
    row("59 bytes, first packet: final", 59, 1, 59);
    row("60 bytes, first packet: full", 60, 1, 60);
    row("60 bytes, second packet: empty final", 60, 2, 0);
    row("61 bytes, second packet: one byte", 61, 2, 1);
    row("120 bytes, third packet: empty final", 120, 3, 0);
    row("behind the end", 60, 3, -60);
    row("no overflow with the largest number", 0, std::numeric_limits<int>::max(), -128849018760);
}

void TestTransferProtocol::bytesLeft()
{
    QFETCH(qint64, imageSize);
    QFETCH(int, number);
    QTEST(transferprotocol::bytesLeft(imageSize, number), "left");
}

void TestTransferProtocol::packetBytes_data()
{
    const Rows<int, int, int, int> row("imageSize", "number", "first", "count");
    row("59 bytes: all in packet 1", 59, 1, 0, 59);
    row("60 bytes: all in packet 1", 60, 1, 0, 60);
    row("60 bytes: none in packet 2", 60, 2, 0, 0);
    row("61 bytes: packet 1", 61, 1, 0, 60);
    row("61 bytes: the last one in packet 2", 61, 2, 60, 1);
    row("120 bytes: packet 2", 120, 2, 60, 60);
    row("120 bytes: none in packet 3", 120, 3, 0, 0);
    row("behind the end", 60, 4, 0, 0);
    row("there is no packet 0", 60, 0, 0, 0);
    row("nor a packet below", 60, -1, 0, 0);
}

void TestTransferProtocol::packetBytes()
{
    QFETCH(int, imageSize);
    QFETCH(int, number);
    QFETCH(int, first);
    QFETCH(int, count);
    const QByteArray image = imageOf(imageSize);
    const ImageBytes bytes = transferprotocol::packetBytes(image, number);
    const QByteArray expected = image.mid(first, count);
    QVERIFY(std::ranges::equal(bytes, span(expected)));
}

void TestTransferProtocol::packetKind_data()
{
    const Rows<int, int, PacketKind> row("imageSize", "number", "kind");
    row("60 bytes: the first", 60, 1, PacketKind::full);
    row("60 bytes: the second, with no byte", 60, 2, PacketKind::final);
    row("60 bytes: the third", 60, 3, PacketKind::behindTheEnd);
    row("59 bytes: the first", 59, 1, PacketKind::final);
    row("59 bytes: the second", 59, 2, PacketKind::behindTheEnd);
    row("61 bytes: the second, with one byte", 61, 2, PacketKind::final);
    row("15 MB: the last full one", 15000000, 250000, PacketKind::full);
    row("no image", 0, 1, PacketKind::final);
}

void TestTransferProtocol::packetKind()
{
    QFETCH(int, imageSize);
    QFETCH(int, number);
    QFETCH(PacketKind, kind);
    QVERIFY(transferprotocol::packetKind(imageSize, number) == kind);
}

void TestTransferProtocol::percent_data()
{
    const Rows<int, int, int> row("packets", "imageSize", "shown");
    row("6000 bytes: before the first packet", 0, 6000, 0);
    row("6000 bytes: before packet 100", 99, 6000, 99);
    row("6000 bytes: before the final packet", 100, 6000, 100);
    row("61 bytes: truncated", 1, 61, 98);
    row("15 MB: no overflow of 32 bits", 249999, 15000000, 99);
    row("no image", 5, 0, 0);
}

void TestTransferProtocol::percent()
{
    QFETCH(int, packets);
    QFETCH(int, imageSize);
    QTEST(transferprotocol::transferPercent(packets, imageSize), "shown");
}

QTEST_APPLESS_MAIN(TestTransferProtocol)
#include "tst_transferprotocol.moc"
