#include "net/plainaddress.h"
#include "tests/support/rows.h"

#include <QtTest>

class TestPlainAddress : public QObject
{
    Q_OBJECT

private slots:
    void takesApart_data();
    void takesApart();
    void refuses_data();
    void refuses();
};

void TestPlainAddress::takesApart_data()
{
    const Rows<QString, QString, QString> row("address", "host", "path");
    row("plain", "http://host/a/b.txt", "host", "/a/b.txt");
    row("https is asked for as http", "https://host/a/b.txt", "host", "/a/b.txt");
    row("any scheme", "ftp://host/a", "host", "/a");
    row("no scheme", "//host/a", "host", "/a");
    row("port stays", "https://host:8080/a", "host:8080", "/a");
    row("query stays", "http://host/a.sb?b=c/d", "host", "/a.sb?b=c/d");
    row("only a slash behind the host", "http://host/", "host", "/");
    row("blanks stay", "http://host/a b", "host", "/a b");
    row("letters beyond ASCII", "http://höst/ä", "höst", "/ä");
    row("no host", "http:///a", "", "/a"); // "//" occurs once, the third slash begins the path
}

void TestPlainAddress::takesApart()
{
    QFETCH(QString, address);
    QFETCH(QString, host);
    QFETCH(QString, path);
    const auto parts = takeApart(address);
    QVERIFY(parts.has_value());
    QCOMPARE(parts->host, host);
    QCOMPARE(parts->path, path);
    QCOMPARE(parts->url(), "http://" + host + path);
}

void TestPlainAddress::refuses_data()
{
    QTest::addColumn<QString>("address");
    QTest::newRow("empty") << "";
    QTest::newRow("no double slash") << "host/a.txt";
    QTest::newRow("two double slashes") << "http://host//a.txt";
    QTest::newRow("nothing behind the host") << "http://host";
    QTest::newRow("scheme only") << "http://";
    QTest::newRow("double slash only") << "//";
    QTest::newRow("four slashes") << "http:////a";
    QTest::newRow("already cut to its path") << "/a/b.txt";
}

void TestPlainAddress::refuses()
{
    QFETCH(QString, address);
    QVERIFY(!takeApart(address).has_value());
}

QTEST_GUILESS_MAIN(TestPlainAddress)
#include "tst_plainaddress.moc"
