#include "tests/virtualunit/host.h"

#include <QTest>

using host::Bytes;
using host::Host;

Q_DECLARE_METATYPE(virtualunit::Verdict)

using virtualunit::Verdict;

/// What a unit with a fault does.
class TestVirtualFaults : public QObject
{
    Q_OBJECT

private slots:
    void transferFaults_data();
    void transferFaults();
    void silentInstallation();
    void cannotOpen_data();
    void cannotOpen();
    void noVersionReport();
    void takesNothing();
    void takesNothingFromAReportOn();
    void unpluggedAtAReport();
    void unpluggedUnitKeepsWhatWasDue();
};

void TestVirtualFaults::transferFaults_data()
{
    QTest::addColumn<QString>("faults");
    QTest::addColumn<QString>("statuses");
    QTest::addColumn<Verdict>("verdict");
    QTest::addColumn<QString>("line");
    const auto row = [](const char* name, const QString& faults, const QString& statuses, Verdict verdict,
                        const QString& line) {
        QTest::newRow(name) << faults << statuses << verdict << line;
    };
    row("none", "", "ef0", Verdict::Installed, "verdict installed");
    row("never answers", ",fault=never-answers", "0", Verdict::None, "unanswered");
    row("refuses, time-out", ",fault=refuses-timeout", "a0", Verdict::Refused, "refused timeout");
    row("refuses, skipped", ",fault=refuses-skipped", "b0", Verdict::Refused, "refused skipped");
    row("loses packet 2", ",fault=loses-packet:2", "bc0", Verdict::WrongDigest, "lost packet=2");
    row("loses the final packet", ",fault=loses-packet:3", "0", Verdict::Receiving, "lost packet=3");
    row("wrong digest", ",fault=wrong-digest", "c0", Verdict::WrongDigest, "verdict wrong-digest");
    row("rejects", ",fault=rejects-image", "70", Verdict::Rejected, "verdict rejected");
    row("fails", ",fault=installation-fails", "e70", Verdict::Rejected, "verdict rejected");
    row("two faults", ",fault=loses-packet:1,fault=rejects-image", "bc0", Verdict::WrongDigest,
        "lost packet=1");
}

void TestVirtualFaults::transferFaults()
{
    QFETCH(QString, faults);
    QFETCH(QString, statuses);
    QFETCH(Verdict, verdict);
    QFETCH(QString, line);
    const Bytes image = imageOf(120);
    for (const models::Model& family : {host::older, host::players}) {
        Host host(family.option + faults);
        host.read();
        host.write(host::request(family, host::digestOf(image)));
        for (const Bytes& report : host::packets(family, image))
            QVERIFY(host.write(report).taken);
        QCOMPARE(host.statuses(300), statuses);
        QCOMPARE(host.unit.verdict(), verdict);
        QVERIFY2(host.journal().contains(line), qPrintable(host.journal().join('\n')));
    }
}

void TestVirtualFaults::silentInstallation()
{
    Host host("hb4,fault=silent-installation");
    host.read();
    host.write(host::request(host::older, host::digestOf("")));
    host.write(host::finalPacket(host::older, 1, ""));
    host.wait(10000);
    QCOMPARE(host.read().size(), 1);
    QCOMPARE(host.unit.nextEventAt(), virtualunit::never);
    QCOMPARE(host.unit.verdict(), Verdict::Installing);
}

void TestVirtualFaults::cannotOpen_data()
{
    QTest::addColumn<bool>("hasProduct");
    QTest::newRow("cannot-open") << true;
    QTest::newRow("no-permission") << false;
}

void TestVirtualFaults::cannotOpen()
{
    QFETCH(bool, hasProduct);
    const Host host(QString("hb4,fault=") + QTest::currentDataTag());
    QVERIFY(!host.opened);
    QCOMPARE(virtualunit::productOf(host.unit.settings()).has_value(), hasProduct);
    QCOMPARE(host.unit.nextEventAt(), virtualunit::never);
}

void TestVirtualFaults::noVersionReport()
{
    Host host("hb4,fault=no-version-report");
    host.wait(5000);
    QCOMPARE(host.read().size(), 0);
    host.write(host::request(host::older, host::digestOf("")));
    QCOMPARE(host.statuses(20), "9");
}

void TestVirtualFaults::takesNothing()
{
    Host host("hb4,fault=takes-nothing");
    const auto receipt = host.write(host::request(host::older, host::digestOf("")));
    QVERIFY(!receipt.taken);
    QCOMPARE(receipt.blockedMs, 1000);
    QCOMPARE(host.journal(), QStringList("opened"));
    Host quick("hb4,fault=takes-nothing:0");
    QCOMPARE(quick.write(host::report({})).blockedMs, 0);
}

void TestVirtualFaults::takesNothingFromAReportOn()
{
    Host host("hb4,fault=takes-nothing:70,fault=takes-nothing-from:2");
    QVERIFY(host.write(host::request(host::older, host::digestOf(""))).taken);
    const QStringList taken = host.journal();
    const auto receipt = host.write(host::finalPacket(host::older, 1, ""));
    QVERIFY(!receipt.taken);
    QCOMPARE(receipt.blockedMs, 70);
    QCOMPARE(host.journal(), taken + QStringList("not-taken"));
}

void TestVirtualFaults::unpluggedAtAReport()
{
    Host host("hb4,fault=unplugged-at:2");
    QVERIFY(host.write(host::request(host::older, host::digestOf("abc"))).taken);
    QVERIFY(host.unit.isPluggedIn());
    QVERIFY(host.write(host::finalPacket(host::older, 1, "abc")).taken); // as far as the host can tell
    QVERIFY(!host.unit.isPluggedIn());
    QVERIFY(!host.write(host::finalPacket(host::older, 1, "abc")).taken);
    QVERIFY(!host.unit.open(host.now));
    QCOMPARE(host.image(), Bytes());
    QCOMPARE(host.journal().last(), "unplugged");
}

void TestVirtualFaults::unpluggedUnitKeepsWhatWasDue()
{
    Host host("hb4,fault=unplugged-at:1");
    host.wait(80);
    host.write(host::report({}));
    host.wait(1000);
    QCOMPARE(host.read().size(), 11);
    QCOMPARE(host.unit.nextEventAt(), virtualunit::never);
}

QTEST_APPLESS_MAIN(TestVirtualFaults)
#include "tst_virtualfaults.moc"
