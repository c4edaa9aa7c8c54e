#include "base/sizelimit.h"
#include "tests/support/rows.h"
#include "tests/support/texts.h"
#include "tests/vendor/goodcatalogue.h"
#include "vendor/checks.h"

#include <QtTest>

namespace {

QStringList told(const Findings& findings)
{
    QStringList lines;
    for (const Finding& finding : findings)
        lines.append(QString("%1 %2 %3 %4")
                         .arg(finding.severity == Severity::error ? "error" : "note", finding.kind,
                              QString::number(finding.line), finding.key));
    return lines;
}

QString textOf(const Findings& findings)
{
    return findings.isEmpty() ? QString() : findings.first().text;
}

} // namespace

class TestCatalogueChecks : public QObject
{
    Q_OBJECT

private slots:
    void bytes_data();
    void bytes();
    void size_data();
    void size();
    void lines_data();
    void lines();
    void numbers_data();
    void numbers();
    void addresses_data();
    void addresses();
    void digests_data();
    void digests();
    void aKeyRequiresDigests();
    void words_data();
    void words();
};

void TestCatalogueChecks::bytes_data()
{
    const Rows<QByteArray, QStringList> row("bytes", "findings");
    const QByteArray good = goodCatalogue();
    row("good", good, {});
    row("CRLF", QByteArray(good).replace("\n", "\r\n"), {});
    row("no end of the last line", good.chopped(1), {});
    row("byte order mark", "\xEF\xBB\xBF" + good, {"note byte-order-mark 1 "});
    row("letters beyond ASCII in a remark", catalogueWith("[HB4]", "[H\xC3\xA4]"), {});
    row("Latin-1 in a remark", catalogueWith("[HB4]", "[H\xE4]"), {"error not-utf-8 6 "});
    row("a letter cut short at the end", good + "[\xC3", {"error not-utf-8 50 "});
    row("the first of two lines that are not UTF-8",
        catalogueWith("[updater]", "[\xE4]").replace("[HB4]", "[\xE4]"), {"error not-utf-8 1 "});
    row("NUL in a remark at the end", good + QByteArray("[\0]\n", 4), {"error nul 50 "});
}

void TestCatalogueChecks::bytes()
{
    QFETCH(QByteArray, bytes);
    QTEST(told(checks::ofCatalogue(bytes)), "findings");
}

void TestCatalogueChecks::size_data()
{
    const Rows<qint64, QByteArray, QString> row("size", "lineEnd", "text");
    const QString reported =
        "10246 bytes without carriage returns: the updater reports a problem above 10245";
    row("as large as may be", 10245, "\n", {});
    row("one byte more", 10246, "\n", reported);
    row("as large as may be, and carriage returns", 10245, "\r\r\r\n", {});
    row("one byte more, and carriage returns", 10246, "\r\r\r\n", reported);
    row("given up", sizeLimit + 1, "\n", "more than 67108864 bytes: the updater gives up");
}

void TestCatalogueChecks::size()
{
    QFETCH(qint64, size);
    QFETCH(QByteArray, lineEnd);
    const QByteArray good = goodCatalogue();
    const QByteArray remark(static_cast<int>(size) - good.size() - 1, 'x');
    QTEST(textOf(checks::ofBytes(good + remark + lineEnd)), "text");
}

void TestCatalogueChecks::lines_data()
{
    const Rows<QByteArray, QByteArray, QStringList> row("from", "to", "findings");
    row("missing version", "HB4Ver=27\n", "", {"error missing 0 HB4Ver"});
    row("version without its equals sign", "HB4Ver=27", "HB4Ver", {"error missing 0 HB4Ver"});
    row("missing image", "HB4Bin=", "[image] ", {"error missing 0 HB4Bin"});
    row("missing change log", "HB4ChangeLog=", "", {"error missing 0 HB4ChangeLog"});
    row("missing updater version", "MainVer=11", "", {"error missing 0 MainVer"});
    row("missing updater change log", "MainChangeLog=", "", {"error missing 0 MainChangeLog"});
    row("missing updater", "MacMainBin=", "", {"error missing 0 MacMainBin"});
    row("of the last model", "PLT70Ver=27", "", {"error missing 0 PLT70Ver"});
    row("empty version", "HB4Ver=27", "HB4Ver=", {"error empty 7 HB4Ver"});
    row("empty updater", "=https://updates.example.com/updater.zip", "=", {"error empty 4 MacMainBin"});
    row("no digest is needed", "HB4Ver=27", "HB4Ver=27\nHB4Sha256=", {});
    row("duplicate", "[HB4]", "HB4Ver=26", {"error duplicate-key 7 HB4Ver"});
    row("what is wrong with a line that does not count is not told", "[HB4]", "HB4Ver=x",
        {"error duplicate-key 7 HB4Ver"});
    row("the later line counts",
        "HB4Bin=", "HB4Ver=\nHB4Bin=", {"error duplicate-key 8 HB4Ver", "error empty 8 HB4Ver"});
    row("key of no model", "[HB4]", "HB5Ver=27", {"error unknown-key 6 HB5Ver"});
    row("stem alone", "[HB4]", "HB4=27", {"error unknown-key 6 HB4"});
    row("other case", "HB4Ver=27", "hb4ver=27", {"error missing 0 HB4Ver", "error unknown-key 7 hb4ver"});
    row("empty key", "[HB4]", "=1", {"error unknown-key 6 "});
    row("remark with an equals sign", "[HB4]", "# a = b", {"error unknown-key 6 # a "});
    row("blank behind a key", "HB4Ver=27", "HB4Ver =27",
        {"error missing 0 HB4Ver", "error blanks 7 HB4Ver "});
    row("tab in front of a key", "HB4Ver=27", "\tHB4Ver=27",
        {"error missing 0 HB4Ver", "error blanks 7 \tHB4Ver"});
    row("blank in front of a value", "HB4Bin=h", "HB4Bin= h", {"error blanks 8 HB4Bin"});
    row("blank behind a value", "HB4.txt", "HB4.txt ", {"error blanks 9 HB4ChangeLog"});
}

void TestCatalogueChecks::lines()
{
    QFETCH(QByteArray, from);
    QFETCH(QByteArray, to);
    QTEST(told(checks::ofCatalogue(catalogueWith(from, to))), "findings");
}

void TestCatalogueChecks::numbers_data()
{
    const Rows<QByteArray, QByteArray, QString> row("key", "value", "text");
    const auto firmware = [&](const char* value, const char* read) {
        row(QByteArray("firmware ").append(value), "HB4Ver=27", value, read);
    };
    const auto mainVersion = [&](const char* value, const QString& read) {
        row(QByteArray("updater ").append(value), "MainVer=11", value, read);
    };
    firmware("0", "");
    firmware("255", "");
    firmware("007", "");
    firmware("2,8", "2,8 is compared as 2 and shown as 0.0: write a whole number, 27 for 2.7");
    firmware("1.5", "1.5 is compared as 1.5 and shown as 0.0: write a whole number, 27 for 2.7");
    firmware("27=x", "27=x is compared as 27 and shown as 0.0: write a whole number, 27 for 2.7");
    firmware("27.", "27. is compared as 27 and shown as 0.0: write a whole number, 27 for 2.7");
    firmware("1e2", "1e2 is compared as 100 and shown as 0.0: write a whole number, 27 for 2.7");
    firmware("v27", "v27 is compared as 0 and shown as 0.0: write a whole number, 27 for 2.7");
    firmware("-3", "-3 is compared as -3 and shown as 0.-3: write a whole number, 27 for 2.7");
    firmware("99999999999",
             "99999999999 is compared as 1e+11 and shown as 0.0: write a whole number, 27 for 2.7");
    firmware("%2", "%2 is compared as 0 and shown as 0.0: write a whole number, 27 for 2.7");
    mainVersion("0", "");
    mainVersion("11x", "11x is read as 0: write a whole number, 9 for 0.9");
    mainVersion("0.11", "0.11 is read as 0: write a whole number, 9 for 0.9");
    mainVersion("-1", "-1 is read as -1: write a whole number, 9 for 0.9");
    mainVersion(updater::own, "");
    mainVersion(updater::next,
                QString("updaters older than 0.%1 offer the new updater and no firmware").arg(updater::next));
}

void TestCatalogueChecks::numbers()
{
    QFETCH(QByteArray, key);
    QFETCH(QByteArray, value);
    const QByteArray name = key.left(key.indexOf('=') + 1);
    QTEST(textOf(checks::ofCatalogue(catalogueWith(key, name + value))), "text");
}

void TestCatalogueChecks::addresses_data()
{
    const Rows<QByteArray, QByteArray, QStringList> row("key", "address", "findings");
    const auto image = [&](const char* name, const char* address, const char* finding) {
        row(name, "HB4Bin", address,
            *finding != 0 ? QStringList{QString(finding) + " 8 HB4Bin"} : QStringList());
    };
    image("port and query", "http://host:8080/a.sb?b=c/d", "");
    image("https", "https://host/a", "note asked-as-http");
    image("https in upper case", "HTTPS://host/a", "note asked-as-http");
    image("no scheme at all", "host/a", "error bad-address");
    image("double slash in the path", "http://host//a", "error bad-address");
    image("nothing behind the host", "http://host", "error bad-address");
    image("no host", "http:///a", "error bad-address");
    image("no port that there is", "http://host:99999/a", "error bad-address");
    row("change log", "HB4ChangeLog", "https://host/a", {"note asked-as-http 9 HB4ChangeLog"});
    row("updater's change log", "MainChangeLog", "https://host/a", {"note asked-as-http 3 MainChangeLog"});
    row("updater's change log without a path", "MainChangeLog", "http://host",
        {"error bad-address 3 MainChangeLog"});
    row("updater over http", "MacMainBin", "http://host/a", {"note not-https 4 MacMainBin"});
    row("updater over https in upper case", "MacMainBin", "HTTPS://host/a", {});
    row("what is opened need not be taken apart", "MacMainBin", "https://host//a", {});
}

void TestCatalogueChecks::addresses()
{
    QFETCH(QByteArray, key);
    QFETCH(QByteArray, address);
    QByteArray text = goodCatalogue();
    const int value = text.indexOf('\n' + key + '=') + key.size() + 2;
    text.replace(value, text.indexOf('\n', value) - value, address);
    QTEST(told(checks::ofCatalogue(text)), "findings");
}

void TestCatalogueChecks::digests_data()
{
    const Rows<QByteArray, bool> row("digest", "isGood");
    const QByteArray good(someDigest);
    row("either case", good, true);
    row("a digit less", good.chopped(1), false);
    row("a digit more", good + '0', false);
    row("another letter", good.chopped(1) + 'g', false);
    row("digits of other scripts", good.chopped(1) + "\xD9\xA3", false);
}

void TestCatalogueChecks::digests()
{
    QFETCH(QByteArray, digest);
    QFETCH(bool, isGood);
    const QByteArray text = catalogueWith("HB4Ver=27\n", "HB4Ver=27\nHB4Sha256=" + digest + '\n');
    QCOMPARE(told(checks::ofCatalogue(text)),
             isGood ? QStringList() : QStringList{"error bad-digest 8 HB4Sha256"});
}

void TestCatalogueChecks::aKeyRequiresDigests()
{
    QStringList missing;
    for (const QByteArray& stem : everyStem())
        missing.append("error missing 0 " + stem + "Sha256");
    QCOMPARE(told(checks::ofCatalogue(goodCatalogue(), true)), missing);
    missing.removeFirst();
    const QByteArray digest = "HB4Ver=27\nHB4Sha256=" + QByteArray(someDigest);
    QCOMPARE(told(checks::ofCatalogue(catalogueWith("HB4Ver=27", digest), true)), missing);
}

void TestCatalogueChecks::words_data()
{
    const Rows<QByteArray, QByteArray, QString> row("from", "to", "text");
    row("lines of a duplicate", "[HB4]", "HB4Ver=25\nHB4Ver=26",
        "appears on lines 6, 7, 8: only the last one counts");
    QByteArray many;
    for (int number = 0; number < 11; ++number)
        many += "HB4Ver=26\n";
    row("lines of many duplicates", "[HB4]\n", many,
        "appears on lines 6, 7, 8, 9, 10, 11, 12, 13, 14, 15 and 2 more: only the last one counts");
    row("what is asked for", "HB4Bin=http:", "HB4Bin=https:",
        "https://updates.example.com/bin/HB4.sb will be requested as "
        "http://updates.example.com/bin/HB4.sb");
}

void TestCatalogueChecks::words()
{
    QFETCH(QByteArray, from);
    QFETCH(QByteArray, to);
    QTEST(textOf(checks::ofCatalogue(catalogueWith(from, to))), "text");
}

QTEST_GUILESS_MAIN(TestCatalogueChecks)
#include "tst_cataloguechecks.moc"
