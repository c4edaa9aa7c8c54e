#include "tests/virtualunit/loghost.h"

#include <QTest>

using host::acknowledge;
using host::Bytes;
using host::Host;
using host::LogHost;
using host::logRequest;
using host::resend;

/// What a unit with a fault sends instead of its log.
class TestVirtualLogFaults : public QObject
{
    Q_OBJECT

private slots:
    void noLog_data();
    void noLog();
    void restartAfterTheLastPart();
    void counts_data();
    void counts();
    void unknownReplies();
    void strayReplies();
    void stall();
    void headerNeverComes();
    void unpluggedAtPart();
    void overlongLastPart();
};

void TestVirtualLogFaults::noLog_data()
{
    QTest::addColumn<bool>("hasLog");
    QTest::addColumn<QString>("text");
    const auto row = [](const char* name, bool hasLog, const QString& text) {
        QTest::newRow(name) << hasLog << text;
    };
    row("none there", false, "hb4");
    row("none there, players", false, "plt70");
    row("refused", true, "hb4,fault=no-log");
}

void TestVirtualLogFaults::noLog()
{
    QFETCH(bool, hasLog);
    QFETCH(QString, text);
    LogHost host = hasLog ? LogHost(text, "log") : LogHost(text);
    host.wait(1);
    QCOMPARE(host.read(), QList<Bytes>{Bytes(1, '\x60') + Bytes(63, '\0')});
    QCOMPARE(host.statuses(20), "0");
    QCOMPARE(host.journal().last(), "log-none");
}

void TestVirtualLogFaults::restartAfterTheLastPart()
{
    LogHost host("hb4,fault=wrong-count", imageOf(10));
    QCOMPARE(host.replies(), QStringList(host::headerOf(imageOf(10), "00000002")));
    host.next();
    host.write(logRequest(host::older));
    QCOMPARE(host.errors(), QStringList());
    QCOMPARE(host.replies(), QStringList(host::headerOf(imageOf(10), "00000002")));
    host.write(acknowledge);
    host.write(acknowledge);
    QCOMPARE(host.errors(), QStringList("error log-acknowledge-unexpected"));
}

void TestVirtualLogFaults::counts_data()
{
    QTest::addColumn<QString>("fault");
    QTest::addColumn<QString>("announced");
    QTest::addColumn<int>("sent");
    const auto row = [](const char* name, const QString& fault, const QString& announced, int sent) {
        QTest::newRow(name) << fault << announced << sent;
    };
    row("right", "", "00000003", 3);
    row("one announced too many", ",fault=wrong-count", "00000004", 3);
    row("300 announced too many", ",fault=wrong-count:300", "0000012f", 3);
    row("one sent too many", ",fault=too-many-parts", "00000003", 4);
    row("two sent too many", ",fault=too-many-parts:2", "00000003", 5);
    row("none announced", ",fault=zero-parts", "00000000", 3);
}

void TestVirtualLogFaults::counts()
{
    QFETCH(QString, fault);
    QFETCH(QString, announced);
    QFETCH(int, sent);
    LogHost host("hb4" + fault, imageOf(136));
    host.wait(10);
    QCOMPARE(QString(host.read().value(0).mid(33, 4).toHex()), announced);
    QList<char> codes;
    for (int i = 0; i < 10; ++i) {
        const Bytes part = host.next();
        if (host.journal().last().startsWith("log-complete"))
            break;
        codes << part.at(0);
    }
    QCOMPARE(codes.size(), sent);
    QCOMPARE(codes.count('\x40'), sent - 1);
    QCOMPARE(codes.last(), '\x50');
}

void TestVirtualLogFaults::unknownReplies()
{
    LogHost host("plt70,fault=unknown-replies:2", imageOf(10));
    host.replies();
    host.write(acknowledge);
    QCOMPARE(host.replies(), QStringList("5a"));
    host.write(resend);
    QCOMPARE(host.replies(), QStringList("5a"));
    host.write(resend);
    QVERIFY(host.replies().value(0).startsWith("500a"));
    host.write(acknowledge);
    QCOMPARE(host.journal().last(), "log-complete acknowledges=2");
    QCOMPARE(host.errors(), QStringList());
}

void TestVirtualLogFaults::strayReplies()
{
    LogHost host("hb4,fault=stray-replies:3", imageOf(10));
    const QStringList replies = host.replies();
    QCOMPARE(replies.size(), 4);
    QCOMPARE(replies.mid(0, 3), QStringList({"5a", "5a", "5a"}));
    QVERIFY(replies.last().startsWith("20"));
}

void TestVirtualLogFaults::stall()
{
    LogHost host("hb4,fault=stalls-after-part:1", imageOf(200));
    host.replies();
    QCOMPARE(host.next().at(0), '\x40');
    host.write(acknowledge);
    host.wait(100000);
    QCOMPARE(host.read().size(), 0);
    LogHost atOnce("hb4,fault=stalls-after-part:0", imageOf(200));
    QCOMPARE(atOnce.replies().size(), 1);
    QCOMPARE(atOnce.next(), Bytes());
}

void TestVirtualLogFaults::headerNeverComes()
{
    LogHost host("hb4,fault=header-never-comes", imageOf(200));
    host.wait(100000);
    QCOMPARE(host.read().size(), 0);
    QCOMPARE(host.journal().last(), "log-request number=1");
}

void TestVirtualLogFaults::unpluggedAtPart()
{
    LogHost host("hb4,fault=unplugged-at-part:2", imageOf(200));
    host.replies();
    QCOMPARE(host.next().at(0), '\x40');
    QVERIFY(host.unit.isPluggedIn());
    QCOMPARE(host.next(), Bytes());
    QVERIFY(!host.unit.isPluggedIn());
    QCOMPARE(host.journal().last(), "unplugged log-part=2");
}

void TestVirtualLogFaults::overlongLastPart()
{
    LogHost host("hb4,fault=overlong-last-part", Bytes("abc"));
    host.replies();
    QCOMPARE(host.next().left(6).toHex(), Bytes("50ff61626300"));
    LogHost other("hb4,fault=overlong-last-part:63", Bytes("abc"));
    other.replies();
    QCOMPARE(other.next().left(3).toHex(), Bytes("503f61"));
}

QTEST_APPLESS_MAIN(TestVirtualLogFaults)
#include "tst_virtuallogfaults.moc"
