#include "tests/virtualunit/loghost.h"

#include <QTest>

using host::acknowledge;
using host::Bytes;
using host::Host;
using host::LogHost;
using host::logRequest;
using host::resend;

/// A log as a host gets it from a unit, with nothing wrong on the unit's side.
class TestVirtualLog : public QObject
{
    Q_OBJECT

private slots:
    void servesALog_data();
    void servesALog();
    void countIsBigEndian();
    void requests_data();
    void requests();
    void replyWaitsForItsAcknowledge();
    void resendRepeatsTheReply();
    void reportsPauseWhileALogIsServed();
    void floodGoesOnWhileALogIsServed();
    void complaints_data();
    void complaints();
    void acknowledgeTooFew();
    void secondLogIsCountedAnew();
    void transferEndsALog();
};

void TestVirtualLog::servesALog_data()
{
    QTest::addColumn<QString>("model");
    QTest::addColumn<int>("size");
    QTest::addColumn<int>("fullParts");
    struct
    {
        int size;
        int fullParts;
    } const sizes[] = {{0, 0}, {1, 0}, {62, 0}, {63, 1}, {125, 1}, {126, 2}, {136, 2}, {188, 2}, {189, 3}};
    for (const char* model : {"hb4", "plt70"})
        for (const auto& [size, fullParts] : sizes)
            QTest::addRow("%s, %d bytes", model, size) << model << size << fullParts;
}

void TestVirtualLog::servesALog()
{
    QFETCH(QString, model);
    QFETCH(int, size);
    QFETCH(int, fullParts);
    const Bytes log = imageOf(size);
    LogHost host(model, log);
    const QString count = QString::number(fullParts + 1, 16).rightJustified(8, '0');
    QCOMPARE(host.replies(), QStringList(host::headerOf(log, count)));
    Bytes received;
    for (int i = 0; i < fullParts; ++i) {
        const Bytes part = host.next();
        QCOMPARE(part.at(0), '\x40');
        received += part.mid(1);
    }
    const Bytes last = host.next();
    QCOMPARE(last.at(0), '\x50');
    received += last.mid(2, last.at(1));
    QCOMPARE(received, log);
    QCOMPARE(last.mid(2 + last.at(1)), Bytes(62 - last.at(1), '\0'));
    host.write(acknowledge);
    QCOMPARE(host.journal().last(), QString("log-complete acknowledges=%1").arg(fullParts + 2));
    QCOMPARE(host.errors(), QStringList());
    QCOMPARE(host.statuses(20), "0"); // the ordinary reports again
}

void TestVirtualLog::countIsBigEndian()
{
    const Bytes log = imageOf(63 * 0x010203);
    LogHost host("hb4", log);
    host.wait(10);
    QCOMPARE(host.read().value(0).mid(33, 4).toHex(), Bytes("00010204"));
}

void TestVirtualLog::requests_data()
{
    QTest::addColumn<QString>("model");
    QTest::addColumn<Bytes>("report");
    QTest::addColumn<QStringList>("lines");
    const auto row = [](const char* name, const QString& model, const Bytes& report,
                        const QStringList& lines) { QTest::newRow(name) << model << report << lines; };
    row("older family", "lmb2", host::report({{1, 0x10}, {2, 1}}), QStringList("log-request number=1"));
    row("players", "plt65", host::report({{61, 0x10}, {62, 1}}), QStringList("log-request number=1"));
    row("number 255", "plt65", host::report({{61, 0x10}, {62, 255}}), QStringList("log-request number=255"));
    row("players, in the other place", "plt65", host::report({{1, 0x10}, {2, 1}}),
        QStringList("error packet-unexpected"));
    row("older family, in the other place", "hb4", host::report({{61, 0x10}, {62, 1}}),
        QStringList("error packet-unexpected"));
    row("older family, a byte too much", "hb4", host::report({{1, 0x10}, {2, 1}, {3, 9}}),
        QStringList{"error log-request-pad byte=2", "log-request number=1"});
    row("players, a byte too much", "plt70", host::report({{61, 0x10}, {62, 1}, {1, 9}}),
        QStringList{"error log-request-pad byte=0", "log-request number=1"});
}

void TestVirtualLog::requests()
{
    QFETCH(QString, model);
    QFETCH(Bytes, report);
    QFETCH(QStringList, lines);
    Host host(model);
    host.write(report);
    QCOMPARE(host.journal().mid(1), lines);
}

void TestVirtualLog::replyWaitsForItsAcknowledge()
{
    LogHost host("plt70", imageOf(100));
    QCOMPARE(host.replies().size(), 1);
    host.wait(100000);
    QCOMPARE(host.replies().size(), 0);
    QCOMPARE(host.unit.nextEventAt(), virtualunit::never);
    host.write(acknowledge);
    QCOMPARE(host.unit.nextEventAt(), host.now + 1);
    QCOMPARE(host.replies().size(), 1);
}

void TestVirtualLog::resendRepeatsTheReply()
{
    LogHost host("plt70", imageOf(200));
    const QStringList header = host.replies();
    host.write(resend);
    QCOMPARE(host.replies(), header);
    host.write(acknowledge);
    const QStringList part = host.replies();
    QVERIFY(part != header);
    host.write(resend);
    QCOMPARE(host.replies(), part);
    QCOMPARE(host.journal().last(), "log-part number=1");
    QCOMPARE(host.errors(), QStringList());
}

void TestVirtualLog::reportsPauseWhileALogIsServed()
{
    LogHost host("hb4", imageOf(100));
    host.wait(1000);
    QCOMPARE(host.read().size(), 1);
    for (int i = 0; i < 3; ++i)
        host.next();
    QCOMPARE(host.journal().last(), "log-complete acknowledges=3");
    const virtualunit::Milliseconds resumed = host.unit.nextEventAt();
    QVERIFY(resumed > host.now - 10 && resumed <= host.now + 8);
}

void TestVirtualLog::floodGoesOnWhileALogIsServed()
{
    LogHost host("hb4,floods-log=yes,period-ms=8", imageOf(100));
    host.wait(80);
    QCOMPARE(host.read().size(), 11); // the header and ten ordinary reports
}

void TestVirtualLog::complaints_data()
{
    QTest::addColumn<Bytes>("report");
    QTest::addColumn<QString>("error");
    const auto row = [](const char* name, const Bytes& report, const QString& error) {
        QTest::newRow(name) << report << error;
    };
    row("acknowledge twice", acknowledge, "error log-acknowledge-unexpected");
    row("resend of nothing", resend, "error log-resend-unexpected");
    row("dirty acknowledge", host::report({{1, 0x30}, {10, 1}}), "error log-reply-pad byte=9");
    row("dirty resend", host::report({{1, 0x70}, {60, 1}}), "error log-reply-pad byte=59");
}

/// In the time between an acknowledge and the part it calls for.
void TestVirtualLog::complaints()
{
    QFETCH(Bytes, report);
    QFETCH(QString, error);
    for (const char* model : {"hb4", "plt70"}) {
        LogHost host(model, imageOf(100));
        host.replies();
        host.write(acknowledge);
        host.write(report);
        QCOMPARE(host.errors().value(0), error);
        QCOMPARE(host.replies().size(), 1);
    }
    Host idle("hb4");
    idle.write(report);
    QVERIFY(idle.errors().contains(error));
}

void TestVirtualLog::acknowledgeTooFew()
{
    LogHost host("hb4", imageOf(10));
    host.replies();
    host.next();
    host.unit.close(host.now);
    QCOMPARE(host.errors(), QStringList("error log-acknowledge-missing"));
    QVERIFY(host.journal().contains("log-abandoned replies=2 acknowledges=1"));
}

void TestVirtualLog::secondLogIsCountedAnew()
{
    LogHost host("hb4", imageOf(10));
    for (int i = 0; i < 2; ++i) {
        host.replies();
        host.next();
        host.next();
        QCOMPARE(host.journal().last(), "log-complete acknowledges=2");
        host.write(logRequest(host::older));
    }
    QCOMPARE(host.errors(), QStringList());
}

void TestVirtualLog::transferEndsALog()
{
    LogHost host("hb4", imageOf(100));
    host.replies();
    host.write(host::request(host::older, host::digestOf("")));
    QVERIFY(host.journal().contains("log-abandoned replies=1 acknowledges=0"));
    QCOMPARE(host.statuses(20), "9");
    QCOMPARE(host.errors(), QStringList());
}

QTEST_APPLESS_MAIN(TestVirtualLog)
#include "tst_virtuallog.moc"
