#include "net/plainaddress.h"

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
    QTest::addColumn<QString>("address");
    QTest::addColumn<QString>("host");
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("url");

    const auto row = [](const char* name, const QString& address, const QString& host, const QString& path) {
        QTest::newRow(name) << address << host << path << "http://" + host + path;
    };
    row("plain", "http://host/a/b.txt", "host", "/a/b.txt");
    row("https is asked for as http", "https://host/a/b.txt", "host", "/a/b.txt");
    row("any scheme", "ftp://host/a", "host", "/a");
    row("no scheme", "//host/a", "host", "/a");
    row("port stays", "https://host:8080/a", "host:8080", "/a");
    row("query stays", "http://host/a.sb?b=c/d", "host", "/a.sb?b=c/d");
    row("only a slash behind the host", "http://host/", "host", "/");
    row("blanks stay", "http://host/a b", "host", "/a b");
    row("letters beyond ASCII", QString::fromUtf8("http://höst/ä"), QString::fromUtf8("höst"),
        QString::fromUtf8("/ä"));
    row("no host", "http:///a", "", "/a"); // "//" occurs once, the third slash begins the path
}

void TestPlainAddress::takesApart()
{
    QFETCH(QString, address);
    const auto parts = takeApart(address);
    QVERIFY(parts.has_value());
    QTEST(parts->host, "host");
    QTEST(parts->path, "path");
    QTEST(parts->url(), "url");
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
