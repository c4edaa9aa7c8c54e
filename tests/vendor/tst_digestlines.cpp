#include "net/catalogue.h"
#include "tests/support/rows.h"
#include "tests/vendor/goodcatalogue.h"
#include "vendor/digestlines.h"

#include <QtTest>

class TestDigestLines : public QObject
{
    Q_OBJECT

private slots:
    void writes_data();
    void writes();
    void refuses_data();
    void refuses();
    void theProgramFindsIt_data();
    void theProgramFindsIt();
    void again();
};

void TestDigestLines::writes_data()
{
    const Rows<QByteArray, QByteArray> row("before", "after");
    row("behind the stem's last line", "HB4Ver=27\nHB4Bin=b\nHB4ChangeLog=l\n\n[HB2]\nHB2Ver=1\n",
        "HB4Ver=27\nHB4Bin=b\nHB4ChangeLog=l\nHB4Sha256=new\n\n[HB2]\nHB2Ver=1\n");
    row("behind the last one, though others stand between", "HB4Ver=27\nHB2Ver=1\nHB4Bin=b\nHB2Bin=b\n",
        "HB4Ver=27\nHB2Ver=1\nHB4Bin=b\nHB4Sha256=new\nHB2Bin=b\n");
    row("other stems that begin alike do not count", "HB4Ver=27\nHB44Ver=1\nHB4VerX=1\n",
        "HB4Ver=27\nHB4Sha256=new\nHB44Ver=1\nHB4VerX=1\n");
    row("in the old one's place", "HB4Ver=27\nHB4Sha256=old\nHB4Bin=b\n",
        "HB4Ver=27\nHB4Sha256=new\nHB4Bin=b\n");
    row("in the first line", "HB4Sha256=old\nHB4Ver=27\n", "HB4Sha256=new\nHB4Ver=27\n");
    row("in an empty one's place", "HB4Sha256=\nHB4Ver=27\n", "HB4Sha256=new\nHB4Ver=27\n");
    row("a value with its own equals sign", "HB4Sha256=a=b\n", "HB4Sha256=new\n");
    row("of two, the one that counts", "HB4Sha256=a\nHB4Sha256=b\n", "HB4Sha256=a\nHB4Sha256=new\n");
    row("CRLF, new", "HB4Ver=27\r\nHB4Bin=b\r\nX=1\r\n", "HB4Ver=27\r\nHB4Bin=b\r\nHB4Sha256=new\r\nX=1\r\n");
    row("CRLF, replaced", "HB4Ver=27\r\nHB4Sha256=old\r\nX=1\r\n", "HB4Ver=27\r\nHB4Sha256=new\r\nX=1\r\n");
    row("mixed line ends, as the line in front", "A=1\nHB4Ver=27\r\nB=1\n",
        "A=1\nHB4Ver=27\r\nHB4Sha256=new\r\nB=1\n");
    row("no last line end, new", "A=1\nHB4Ver=27", "A=1\nHB4Ver=27\nHB4Sha256=new");
    row("no last line end, CRLF, new", "A=1\r\nHB4Ver=27", "A=1\r\nHB4Ver=27\r\nHB4Sha256=new");
    row("no line end at all, new", "HB4Ver=27", "HB4Ver=27\nHB4Sha256=new");
    row("no last line end, replaced", "A=1\r\nHB4Sha256=old", "A=1\r\nHB4Sha256=new");
    row("carriage returns elsewhere stay", "A\r=\r1\r\r\nHB4Ver=2\r7\r\n",
        "A\r=\r1\r\r\nHB4Ver=2\r7\r\nHB4Sha256=new\r\n");
    row("carriage return in the key", "HB4\rSha256=old\n", "HB4\rSha256=new\n");
    row("byte order mark", "\xEF\xBB\xBFHB4Ver=27\n", "\xEF\xBB\xBFHB4Ver=27\nHB4Sha256=new\n");
    row("byte order mark, replaced", "\xEF\xBB\xBFHB4Sha256=old\n", "\xEF\xBB\xBFHB4Sha256=new\n");
    row("bytes that are not UTF-8 stay", "[\xE4]\nHB4Ver=27\n[\xFF]\n",
        "[\xE4]\nHB4Ver=27\nHB4Sha256=new\n[\xFF]\n");
    row("blanks and empty lines stay", "\n \n\tA = 1 \nHB4Ver=27\n\n",
        "\n \n\tA = 1 \nHB4Ver=27\nHB4Sha256=new\n\n");
}

void TestDigestLines::writes()
{
    QFETCH(QByteArray, before);
    const auto written = withDigest(before, "HB4", "new");
    QVERIFY(written.has_value());
    QTEST(*written, "after");
}

void TestDigestLines::refuses_data()
{
    QTest::addColumn<QByteArray>("before");
    QTest::newRow("no line of the stem") << QByteArray("HB2Ver=1\n");
    QTest::newRow("a remark is no line of it") << QByteArray("[HB4]\nHB4Ver\n");
    QTest::newRow("nothing") << QByteArray();
    QTest::newRow("NUL in front") << QByteArray("A\0\nHB4Ver=1\n", 12);
    QTest::newRow("NUL behind") << QByteArray("HB4Ver=1\nA\0\n", 12);
}

void TestDigestLines::refuses()
{
    QFETCH(QByteArray, before);
    QVERIFY(!withDigest(before, "HB4", "new").has_value());
}

void TestDigestLines::theProgramFindsIt_data()
{
    QTest::addColumn<QString>("stem");
    for (const char* const stem : {"HB4", "ZEQPRO", "PLT70"})
        QTest::newRow(stem) << QString(stem);
}

/// And everything else as before.
void TestDigestLines::theProgramFindsIt()
{
    QFETCH(QString, stem);
    auto entries = catalogue::parse(goodCatalogue());
    entries.insert(stem + "Sha256", someDigest);
    const auto written = withDigest(goodCatalogue(), stem, someDigest);
    QVERIFY(written.has_value());
    QCOMPARE(catalogue::parse(*written), entries);
}

void TestDigestLines::again()
{
    const auto once = withDigest(goodCatalogue(), "HB4", someDigest);
    QVERIFY(once.has_value());
    QCOMPARE(withDigest(*once, "HB4", someDigest), once);
}

QTEST_GUILESS_MAIN(TestDigestLines)
#include "tst_digestlines.moc"
