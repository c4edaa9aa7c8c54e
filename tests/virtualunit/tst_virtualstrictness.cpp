#include "tests/virtualunit/host.h"

#include <QTest>

using host::Bytes;
using host::Host;

Q_DECLARE_METATYPE(models::Model)

using virtualunit::Verdict;

namespace {

Bytes with(Bytes report, int index, int value)
{
    report[index] = static_cast<char>(value);
    return report;
}

const models::Model families[] = {host::older, host::players};

} // namespace

/// What a unit complains of.
class TestVirtualStrictness : public QObject
{
    Q_OBJECT

private slots:
    void strictness_data();
    void strictness();
    void badRequests_data();
    void badRequests();
    void packetNumbers_data();
    void packetNumbers();
    void skippedPacketIsToldAtOnce();
    void unknownCommandSpoilsAGoodTransfer();
    void breachIsForgottenWithTheNextRequest();
};

/// A good transfer of 70 bytes in which one report is replaced; the digest is that of the 70 bytes.
void TestVirtualStrictness::strictness_data()
{
    QTest::addColumn<models::Model>("family");
    QTest::addColumn<int>("position"); // 0: request, 1: data packet, 2: final packet
    QTest::addColumn<Bytes>("report");
    QTest::addColumn<QString>("error");
    QTest::addColumn<QString>("statuses");
    const Bytes image = imageOf(70);
    for (const models::Model& f : families) {
        const auto row = [&](const char* name, int position, const Bytes& report, const QString& error,
                             const QString& statuses) {
            QTest::addRow("%s, %s", f.option, name) << f << position << report << error << statuses;
        };
        const Bytes data = host::packets(f, image).first();
        const Bytes last = host::packets(f, image).last();
        const int lastPad = f.command() == 1 ? 63 : 59;
        const QString lastByte = QString::number(static_cast<uchar>(image.at(69)), 16);
        row("data packet too short", 1, data.left(64), "report-length got=64", "bc0");
        row("data packet too long", 1, data + '\0', "report-length got=66", "bc0");
        row("report ID 1", 1, with(data, 0, 1), "report-id got=0x01", "bc0");
        row("unknown command", 1, with(data, f.command(), 0x40), "command got=0x40", "bc0");
        row("final command with a low half", 2, with(last, f.command(), 0xD1), "command got=0xd1", "0");
        row("packet number 2 first", 1, with(data, f.command() + 3, 2), "packet-number expected=1 got=2",
            "b70");
        row("byte changed", 1, with(data, f.data() + 17, 0xEE), "", "c0");
        row("final number wrong", 2, with(last, f.command() + 3, 3), "packet-number expected=2 got=3", "b70");
        row("final count 60", 2, with(last, f.command() + 1, 60), "final-count got=60", "c0");
        row("final count 255", 2, with(last, f.command() + 1, 255), "final-count got=255", "c0");
        row("final count too small", 2, with(last, f.command() + 1, 9),
            QString("final-pad byte=%1 value=0x%2").arg(f.data() + 8).arg(lastByte), "c0");
        row("final pad not zero", 2, with(last, f.data() + 59, 7),
            QString("final-pad byte=%1 value=0x07").arg(lastPad), "70");
        row("second request", 1, host::request(f, host::digestOf(image)), "request-during-transfer", "bc0");
    }
}

void TestVirtualStrictness::strictness()
{
    QFETCH(models::Model, family);
    QFETCH(int, position);
    QFETCH(Bytes, report);
    QFETCH(QString, error);
    QFETCH(QString, statuses);
    const Bytes image = imageOf(70);
    QList<Bytes> reports =
        QList<Bytes>{host::request(family, host::digestOf(image))} + host::packets(family, image);
    reports[position] = report;
    Host host(family.option);
    host.read();
    for (const Bytes& output : reports)
        host.write(output);
    QStringList errors = host.errors();
    QCOMPARE(errors.isEmpty() ? QString() : errors.takeFirst(),
             error.isEmpty() ? QString() : "error " + error);
    QCOMPARE(host.statuses(200), statuses);
}

void TestVirtualStrictness::badRequests_data()
{
    QTest::addColumn<models::Model>("family");
    QTest::addColumn<Bytes>("report");
    QTest::addColumn<QString>("error");
    const Bytes digest = host::digestOf("abc");
    const auto row = [](const char* name, const models::Model& family, const Bytes& report,
                        const QString& error) {
        QTest::addRow("%s, %s", family.option, name) << family << report << error;
    };
    for (const models::Model& f : families) {
        const Bytes good = host::request(f, digest);
        row("capital digits", f, host::request(f, digest.toUpper()), "request-digest");
        row("one digit short", f, with(good, 33, 0), "request-digest");
        row("no digit", f, with(good, 2, 'g'), "request-digest");
        row("digest one byte on", f, host::request(f, Bytes(1, '\0') + digest.chopped(1)), "request-digest");
        row("byte behind the digest", f, with(good, 34, 1), "request-pad byte=33 value=0x01");
        row("byte 60", f, with(good, 60, 0xFF), "request-pad byte=59 value=0xff");
        row("last byte", f, with(good, 64, 1), "request-pad byte=63 value=0x01");
    }
    row("command in both places", host::players, with(host::request(host::players, digest), 1, 0x80),
        "request-pad byte=0 value=0x80");
}

void TestVirtualStrictness::badRequests()
{
    QFETCH(models::Model, family);
    QFETCH(Bytes, report);
    QFETCH(QString, error);
    Host host(family.option);
    host.read();
    host.write(report);
    QCOMPARE(host.errors(), QStringList("error " + error));
    QCOMPARE(host.journal().last(), "refused malformed");
    QCOMPARE(host.statuses(100), "b0");
    host.write(host::finalPacket(family, 1, "abc"));
    host.write(host::finalPacket(family, 1, "abc"));
    QCOMPARE(host.errors().mid(1), QStringList("error packet-unexpected"));
    QCOMPARE(host.unit.verdict(), Verdict::Refused);
}

void TestVirtualStrictness::packetNumbers_data()
{
    QTest::addColumn<models::Model>("family");
    QTest::addColumn<Bytes>("number");
    QTest::addColumn<QString>("got");
    for (const models::Model& f : families) {
        QTest::addRow("%s, four different bytes", f.option) << f << Bytes::fromHex("00012345") << "74565";
        QTest::addRow("%s, 28 bits", f.option) << f << Bytes::fromHex("0fffffff") << "268435455";
        QTest::addRow("%s, highest byte only", f.option) << f << Bytes::fromHex("01000000") << "16777216";
    }
}

void TestVirtualStrictness::packetNumbers()
{
    QFETCH(models::Model, family);
    QFETCH(Bytes, number);
    QFETCH(QString, got);
    Host host(family.option);
    host.write(host::request(family, host::digestOf("")));
    host.write(host::report({}).replace(family.command(), 4, number));
    QCOMPARE(host.errors(), QStringList("error packet-number expected=1 got=" + got));
}

void TestVirtualStrictness::skippedPacketIsToldAtOnce()
{
    const Bytes image = imageOf(300);
    const QList<Bytes> reports = host::packets(host::players, image);
    Host host("plt70");
    host.read();
    host.write(host::request(host::players, host::digestOf(image)));
    host.write(reports[0]);
    host.write(reports[2]);
    QCOMPARE(host.statuses(100), "b0");
    host.write(reports[3]);
    host.write(reports[4]);
    QCOMPARE(host.statuses(100), "0");
    host.write(reports[5]);
    QCOMPARE(host.statuses(100), "c0");
    QCOMPARE(host.errors(), QStringList("error packet-number expected=2 got=3"));
    QCOMPARE(host.unit.verdict(), Verdict::WrongDigest);
    QCOMPARE(host.image().size(), 240);
}

void TestVirtualStrictness::unknownCommandSpoilsAGoodTransfer()
{
    Host host("hb4");
    host.read();
    host.write(host::request(host::older, host::digestOf("abc")));
    host.write(host::report({{1, 0x40}}));
    host.write(host::finalPacket(host::older, 1, "abc"));
    QCOMPARE(host.statuses(100), "70");
    QCOMPARE(host.errors(), QStringList("error command got=0x40"));
}

void TestVirtualStrictness::breachIsForgottenWithTheNextRequest()
{
    Host host("hb4");
    for (int i = 0; i < 2; ++i) {
        host.write(host::request(host::older, host::digestOf("abc")));
        if (i == 0)
            host.write(host::report({{1, 0x40}}));
        host.write(host::finalPacket(host::older, 1, "abc"));
    }
    QCOMPARE(host.unit.verdict(), Verdict::Installing);
}

QTEST_APPLESS_MAIN(TestVirtualStrictness)
#include "tst_virtualstrictness.moc"
