#include "base/sizelimit.h"
#include "tests/support/rows.h"
#include "tests/vendor/goodcatalogue.h"
#include "vendor/escaped.h"
#include "vendor/report.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QtTest>

class TestVendorReport : public QObject
{
    Q_OBJECT

private slots:
    void escapes_data();
    void escapes();
    void everyModel();
    void oneBadKeySpoilsItsModels();
    void text();
    void textInColour();
    void textEscapesWhatComesFromOutside();
    void json();
    void jsonIsPlainAscii();
    void fetched();
    void carriageReturnsDoNotCountForASight();
    void givenUp();
    void firstFindingsOnly_data();
    void firstFindingsOnly();
};

void TestVendorReport::escapes_data()
{
    const Rows<QString, QString> row("text", "shown");
    row("plain", "a b=c", "a b=c");
    row("beyond ASCII", QString::fromUtf8("ä€"), QString::fromUtf8("ä€"));
    row("beyond 16 bits", QString::fromUtf8("\xF0\x9F\x8E\xA7"), QString::fromUtf8("\xF0\x9F\x8E\xA7"));
    row("escape", "\033[31m", "\\u{1B}[31m");
    row("line feed", "a\nb", "a\\u{A}b");
    row("delete", "\x7F", "\\u{7F}");
    row("control of 8 bits", QString(QChar(0x9B)), "\\u{9B}");
    row("right to left", QString(QChar(0x202E)), "\\u{202E}");
    row("line separator", QString(QChar(0x2028)), "\\u{2028}");
    row("paragraph separator", QString(QChar(0x2029)), "\\u{2029}");
    row("backslash", "\\u{1B}", "\\\\u{1B}");
}

void TestVendorReport::escapes()
{
    QFETCH(QString, text);
    QTEST(escaped(text), "shown");
}

void TestVendorReport::everyModel()
{
    const Report report = reportOn("versions.txt", goodCatalogue(), {});
    QCOMPARE(report.rows.size(), 18);
    QCOMPARE(report.rows.first().model, QString("HB4"));
    QCOMPARE(report.rows[16].model, QString("PLT65"));
    QCOMPARE(report.rows[16].image, QString("http://updates.example.com/bin/PLT70.sb"));
    QCOMPARE(report.rows[17].model, QString("updater"));
    QCOMPARE(report.rows[17].version, QString("11"));
    for (const Report::Row& row : report.rows)
        QVERIFY(row.isGood);
}

void TestVendorReport::oneBadKeySpoilsItsModels()
{
    const Report report = reportOn("versions.txt", catalogueWith("ZEQPROVer=27", "ZEQPROVer=2.7"), {});
    QStringList bad;
    for (const Report::Row& row : report.rows)
        if (!row.isGood)
            bad.append(row.model);
    QCOMPARE(bad, QStringList({"ZEQ PRO", "ZEQ IO"}));
}

void TestVendorReport::text()
{
    const QByteArray served =
        catalogueWith("HB4Ver=27", "HB4Ver=2,8").replace("HB2Bin=http:", "HB2Bin=https:");
    const QByteArray text = asText(reportOn("versions.txt", served, {{"hb4", "HB4", 1}}), false);
    const QByteArrayList lines = text.split('\n');
    QCOMPARE(lines[0], "versions.txt, " + QByteArray::number(served.size()) + " bytes");
    QCOMPARE(lines[2], QByteArray("       model         keys       version  digest  image"));
    QCOMPARE(
        lines[3],
        QByteArray("error  HB4           HB4...     0.0      no      http://updates.example.com/bin/HB4.sb"));
    QCOMPARE(lines[4],
             QByteArray(
                 "good   HB2           HB2...     2.7      no      https://updates.example.com/bin/HB2.sb"));
    QCOMPARE(lines[20],
             QByteArray(
                 "good   updater       Main...    0.11     no      https://updates.example.com/updater.zip"));
    QCOMPARE(
        lines[22],
        QByteArray("hb4 at 0.1 sees  an offer of firmware 0.0, from http://updates.example.com/bin/HB4.sb"));
    QCOMPARE(lines[24],
             QByteArray("error  line 7   HB4Ver  2,8 is compared as 2 and shown as 0.0: write a whole "
                        "number, 27 for 2.7"));
    QCOMPARE(lines[25],
             QByteArray("note   line 13  HB2Bin  https://updates.example.com/bin/HB2.sb will be requested "
                        "as http://updates.example.com/bin/HB2.sb"));
    QCOMPARE(lines[27], QByteArray("1 error, 1 note"));
    QCOMPARE(lines.size(), 29);
    QVERIFY(!text.contains('\033'));
}

void TestVendorReport::textInColour()
{
    const QByteArray served =
        catalogueWith("HB4Ver=27", "HB4Ver=2,8").replace("HB2Bin=http:", "HB2Bin=https:");
    const Report report = reportOn("versions.txt", served, {});
    QByteArray text = asText(report, true);
    QVERIFY(text.contains("\033[31merror\033[0m  line 7"));
    QVERIFY(text.contains("\033[33mnote\033[0m   line 13"));
    QVERIFY(text.contains("\033[32mgood\033[0m   HB2 "));
    for (const char* const code : {"\033[31m", "\033[32m", "\033[33m", "\033[0m"})
        text.replace(code, "");
    QCOMPARE(text, asText(report, false));
}

void TestVendorReport::textEscapesWhatComesFromOutside()
{
    const QByteArray served =
        catalogueWith("[HB4]", "\033]0;x\007=\xC2\x9B").replace("HB2Ver=27", "HB2Ver=\033[31m");
    QByteArray text = asText(reportOn("\033c", served, {{"\033", "HB4", 1}}), false);
    text.replace('\n', "");
    for (const char byte : text)
        QVERIFY2(byte >= ' ' && byte != 0x7F, text.constData()); // bytes above 0x7F are negative
}

void TestVendorReport::json()
{
    const QByteArray served = catalogueWith("HB4Ver=27", "HB4Ver=2,8\nHB4Sha256=" + QByteArray(someDigest));
    const QJsonObject object =
        QJsonDocument::fromJson(asJson(reportOn("versions.txt", served, {{"hb2", "HB2", 23}}))).object();
    QCOMPARE(object["source"].toString(), QString("versions.txt"));
    QCOMPARE(object["size"].toInt(), served.size());
    QCOMPARE(object["errors"].toInt(), 1);
    QCOMPARE(object["notes"].toInt(-1), 0);
    QCOMPARE(object["rows"].toArray().size(), 18);
    const QJsonObject row{{"model", "HB4"},
                          {"stem", "HB4"},
                          {"version", "2,8"},
                          {"image", "http://updates.example.com/bin/HB4.sb"},
                          {"changeLog", "http://updates.example.com/logs/HB4.txt"},
                          {"digest", someDigest},
                          {"isGood", false}};
    QCOMPARE(object["rows"].toArray().first().toObject(), row);
    const QJsonObject view{{"model", "hb2"},
                           {"version", 23},
                           {"sees", "firmware"},
                           {"text", "an offer of firmware 2.7, from http://updates.example.com/bin/HB2.sb"}};
    QCOMPARE(object["views"].toArray(), QJsonArray{view});
    const QJsonObject finding{
        {"severity", "error"},
        {"kind", "misread-number"},
        {"line", 7},
        {"key", "HB4Ver"},
        {"text", "2,8 is compared as 2 and shown as 0.0: write a whole number, 27 for 2.7"}};
    QCOMPARE(object["findings"].toArray(), QJsonArray{finding});
}

void TestVendorReport::jsonIsPlainAscii()
{
    const QString key = QString::fromUtf8("\xC2\x9B\xF0\x9F\x8E\xA7\x7F");
    const QByteArray json = asJson(reportOn("x", catalogueWith("[HB4]", key.toUtf8() + "=1"), {}));
    for (const char byte : json)
        QVERIFY(byte == '\n' || (byte >= ' ' && byte < 0x7F));
    const QJsonObject object = QJsonDocument::fromJson(json).object();
    QCOMPARE(object["findings"].toArray().first().toObject()["key"].toString(), key);
}

void TestVendorReport::fetched()
{
    Fetched image;
    image.wanted = {"HB4Bin", "http://h/b", true};
    image.status = 404;
    image.size = 12;
    image.type = "text/plain\033";
    image.failure = "Not Found";
    image.digest = "12ab";
    Report report = reportOn("x", goodCatalogue(), {});
    addFetched(report, {image}, {});
    QCOMPARE(countOf(report.findings, Severity::error), 1);
    QVERIFY(!report.rows.first().isGood);
    const QByteArray text = asText(report, false);
    QVERIFY2(text.contains("HB4Bin  404     12     text/plain\\u{1B}            12ab\n"), text.constData());
    const QJsonObject object{{"key", "HB4Bin"},    {"url", "http://h/b"}, {"status", 404},   {"size", 12},
                             {"type", image.type}, {"encoding", ""},      {"digest", "12ab"}};
    QCOMPARE(QJsonDocument::fromJson(asJson(report)).object()["fetched"].toArray(), QJsonArray{object});
}

void TestVendorReport::carriageReturnsDoNotCountForASight()
{
    const QByteArray large = goodCatalogue() + QByteArray(10246, '\r');
    QCOMPARE(QString(reportOn("x", large, {{"hb4", "HB4", 27}}).views.first().sight.kind),
             QString("up-to-date"));
    const QByteArray tooLarge = goodCatalogue() + QByteArray(10246, '#');
    QCOMPARE(QString(reportOn("x", tooLarge, {{"hb4", "HB4", 27}}).views.first().sight.kind),
             QString("problem"));
}

void TestVendorReport::givenUp()
{
    const QByteArray large = goodCatalogue() + QByteArray(static_cast<int>(sizeLimit), '\0');
    const Report report = reportOn("x", large, {{"hb4", "HB4", 27}});
    QVERIFY(report.rows.isEmpty());
    QCOMPARE(report.findings.size(), 1);
    QCOMPARE(QString(report.findings.first().kind), QString("too-large"));
    QVERIFY(report.views.first().sight.text.endsWith("the catalogue is too large"));
    QVERIFY(!asText(report, false).contains("keys"));
}

void TestVendorReport::firstFindingsOnly_data()
{
    const Rows<int, int, QString> row("linesOfNoModel", "printed", "last");
    row("all", 100, 101, "no model has this key");
    row("one too many", 101, 102, "and 1 more");
    row("many", 400, 102, "and 300 more");
}

/// What is missing is about no line, and always printed.
void TestVendorReport::firstFindingsOnly()
{
    QFETCH(int, linesOfNoModel);
    QByteArray served = catalogueWith("HB4Ver=27\n", "");
    for (int number = 0; number < linesOfNoModel; ++number)
        served += "U" + QByteArray::number(number) + "=1\n";
    const Report report = reportOn("x", served, {});
    const QJsonObject object = QJsonDocument::fromJson(asJson(report)).object();
    QCOMPARE(object["errors"].toInt(), linesOfNoModel + 1);
    const QJsonArray findings = object["findings"].toArray();
    QTEST(findings.size(), "printed");
    QCOMPARE(findings.first().toObject()["kind"].toString(), QString("missing"));
    QTEST(findings.last().toObject()["text"].toString(), "last");
    QCOMPARE(findings.last().toObject()["severity"].toString(), QString("error"));
    QVERIFY(asText(report, false).contains(findings.last().toObject()["text"].toString().toUtf8() + '\n'));
}

QTEST_GUILESS_MAIN(TestVendorReport)
#include "tst_vendorreport.moc"
