#include "net/catalogue.h"
#include "tests/support/models.h"
#include "tests/support/rows.h"
#include "tests/support/texts.h"

#include <QLocale>
#include <QtTest>

using catalogue::Decision;
using catalogue::Entries;
Q_DECLARE_METATYPE(catalogue::Entries)
Q_DECLARE_METATYPE(catalogue::Decision)

namespace {

/// As a server may publish it: two models, remarks, a value with its own "=", a later duplicate.
const QByteArray published = "[updater]\n"
                             "MainVer=11\n"
                             "MainChangeLog=http://update-server/logs/updater.txt\n"
                             "MacMainBin=http://update-server/bin/updater.zip\n"
                             "\n"
                             "HB4Ver=27\n"
                             "HB4Bin=http://update-server/bin/HB4_27.sb\n"
                             "HB4ChangeLog=http://update-server/logs/HB4.txt\n"
                             "PLT70Ver=1.5\n"
                             "PLT70Bin=http://update-server/bin/PLT70.sb?a=b\n"
                             "PLT70ChangeLog=http://update-server/logs/PLT70.txt\n"
                             "HB4Ver=28\n";

catalogue::Offer goodOffer()
{
    return {"27", "http://s/b", "http://s/l", "11", "http://s/ml", "http://s/mb"};
}

} // namespace

class TestCatalogue : public QObject
{
    Q_OBJECT

private slots:
    void parses_data();
    void parses();
    void carriageReturnsVanish_data();
    void carriageReturnsVanish();
    void findsAnOffer();
    void findsNothingForAnotherModel();
    void stemOfModel_data();
    void stemOfModel();
    void decides_data();
    void decides();
    void missingValue_data();
    void missingValue();
    void requiredDigest_data();
    void requiredDigest();
    void digestOfAnImage();
    void number_data();
    void number();
    void numberInAnyLocale();
};

void TestCatalogue::parses_data()
{
    const Rows<QByteArray, Entries> row("bytes", "entries");
    row("nothing", "", {});
    row("one line", "HB4Ver=27\n", {{"HB4Ver", "27"}});
    row("last line without its end", "HB4Ver=27", {{"HB4Ver", "27"}});
    row("value keeps its own equals signs", "HB4Ver=27=x\nB==\n", {{"HB4Ver", "27=x"}, {"B", "="}});
    row("line without equals sign is a remark", "[HB4]\nHB4Ver\nA=1\n", {{"A", "1"}});
    row("empty lines", "\n\nA=1\n\n", {{"A", "1"}});
    row("empty value", "A=\n", {{"A", ""}});
    row("empty key", "=1\n", {{"", "1"}});
    row("blanks are kept", "HB4Ver = 27 \n\tA=1\n", {{"HB4Ver ", " 27 "}, {"\tA", "1"}});
    row("case matters", "hb4ver=1\nHB4Ver=2\n", {{"hb4ver", "1"}, {"HB4Ver", "2"}});
    row("later duplicate wins", "A=1\nB=2\nA=3\n", {{"A", "3"}, {"B", "2"}});
    row("later empty duplicate wins too", "A=1\nA=\n", {{"A", ""}});
    row("text ends at a NUL byte", QByteArray("A=1\nB=2\0\nC=3\n", 13), {{"A", "1"}, {"B", "2"}});
    row("NUL byte first", QByteArray("\0A=1\n", 5), {});
    row("UTF-8", "A=\xC3\xA4\n", {{"A", QString(QChar(0xE4))}});
}

void TestCatalogue::parses()
{
    QFETCH(QByteArray, bytes);
    QTEST(catalogue::parse(bytes), "entries");
}

void TestCatalogue::carriageReturnsVanish_data()
{
    const Rows<QByteArray, QByteArray> row("bytes", "kept");
    row("none", "A=1\n", "A=1\n");
    row("before the line end", "A=27\r\nB=2\r\n", "A=27\nB=2\n");
    row("within a line", "A\r=\r1\r\n", "A=1\n");
    row("several", "\r\r\r", "");
    row("behind a NUL byte", QByteArray("A\0\rB", 4), QByteArray("A\0B", 3));
}

void TestCatalogue::carriageReturnsVanish()
{
    QFETCH(QByteArray, bytes);
    QTEST(catalogue::withoutCarriageReturns(bytes), "kept");
}

void TestCatalogue::findsAnOffer()
{
    const Entries entries = catalogue::parse(published);
    const catalogue::Offer hb4 = catalogue::lookUp(entries, "HB4");
    QCOMPARE(hb4.newVersion, QString("28"));
    QCOMPARE(hb4.binUrl, QString("http://update-server/bin/HB4_27.sb"));
    QCOMPARE(hb4.changeLogUrl, QString("http://update-server/logs/HB4.txt"));
    QCOMPARE(hb4.mainVersion, QString("11"));
    QCOMPARE(hb4.mainChangeLogUrl, QString("http://update-server/logs/updater.txt"));
    QCOMPARE(hb4.mainBinUrl, QString("http://update-server/bin/updater.zip"));
    QCOMPARE(catalogue::lookUp(entries, "PLT70").binUrl, QString("http://update-server/bin/PLT70.sb?a=b"));
    QCOMPARE(catalogue::decide(hb4, "23"), Decision::newerFirmware);
    QCOMPARE(catalogue::decide(hb4, "28"), Decision::upToDate);
    QCOMPARE(catalogue::decide(hb4, "30"), Decision::upToDate);
}

void TestCatalogue::findsNothingForAnotherModel()
{
    const catalogue::Offer hb2 = catalogue::lookUp(catalogue::parse(published), "HB2");
    QVERIFY(hb2.newVersion.isEmpty());
    QVERIFY(hb2.binUrl.isEmpty());
    QVERIFY(hb2.changeLogUrl.isEmpty());
    QCOMPARE(hb2.mainVersion, QString("11"));
    QCOMPARE(catalogue::decide(hb2, "1"), Decision::incomplete);
}

void TestCatalogue::stemOfModel_data()
{
    const Rows<UnitType, QString> row("type", "stem");
    for (const models::Model& model : models::all)
        row(model.option, model.type, QString(model.stem));
    row("no model", static_cast<UnitType>(models::count), "HB2");
}

void TestCatalogue::stemOfModel()
{
    QFETCH(UnitType, type);
    QFETCH(QString, stem);
    QCOMPARE(catalogue::keyStem(type), stem);
}

void TestCatalogue::decides_data()
{
    const Rows<QString, QString, QString, Decision> row("updater", "firmware", "unit", "decision");
    const QString zero = "0";
    row("newer firmware", updater::own, "28", "23", Decision::newerFirmware);
    row("same firmware", updater::own, "27", "27", Decision::upToDate);
    row("older firmware", updater::own, "27", "30", Decision::upToDate);
    row("newer by a fraction", updater::own, "27.5", "27", Decision::newerFirmware);
    row("1.10 is less than 1.9", updater::own, "1.10", "1.9", Decision::upToDate);
    row("1.05 is more than 1.0", updater::own, "1.05", "1", Decision::newerFirmware);
    row("number with something behind it", updater::own, "27=x", "26", Decision::newerFirmware);
    row("firmware without a number is 0", updater::own, "abc", "0", Decision::upToDate);
    row("unit without a number is 0", updater::own, "1", "abc", Decision::newerFirmware);
    row("unit without a version is 0", updater::own, "1", "", Decision::newerFirmware);
    row("newer updater", updater::next, "27", "27", Decision::newerUpdater);
    row("much newer updater", "100", "27", "27", Decision::newerUpdater);
    row("newer updater goes before newer firmware", updater::next, "28", "23", Decision::newerUpdater);
    row("leading zeros go", zero + updater::own, "28", "23", Decision::newerFirmware);
    row("and make no octal number", zero + updater::next, "28", "23", Decision::newerUpdater);
    row("updater without a number is 0", "abc", "27", "27", Decision::upToDate);
    row("updater with a fraction is no whole number", updater::next + QString(".5"), "27", "27",
        Decision::upToDate);
    row("updater with something behind its number", updater::next + QString("x"), "27", "27",
        Decision::upToDate);
    row("hexadecimal updater", "0x20", "27", "27", Decision::upToDate);
    row("updater beyond an int", "99999999999", "27", "27", Decision::upToDate);
    row("negative updater", QString("-") + updater::next, "27", "27", Decision::upToDate);
}

void TestCatalogue::decides()
{
    QFETCH(QString, updater);
    QFETCH(QString, firmware);
    QFETCH(QString, unit);
    catalogue::Offer offer = goodOffer();
    offer.mainVersion = updater;
    offer.newVersion = firmware;
    QTEST(catalogue::decide(offer, unit), "decision");
}

void TestCatalogue::missingValue_data()
{
    const Rows<int, Decision> row("value", "decision");
    row("firmware version", 0, Decision::incomplete);
    row("image address", 1, Decision::incomplete);
    row("change log address", 2, Decision::incomplete);
    row("updater version", 3, Decision::incomplete);
    row("updater address", 4, Decision::incomplete);
    row("the updater's change log address is not needed", 5, Decision::newerUpdater);
}

void TestCatalogue::missingValue()
{
    QFETCH(int, value);
    catalogue::Offer offer = goodOffer();
    offer.mainVersion = updater::next; // also a newer updater is not offered from an incomplete catalogue
    const std::array values{&offer.newVersion,  &offer.binUrl,     &offer.changeLogUrl,
                            &offer.mainVersion, &offer.mainBinUrl, &offer.mainChangeLogUrl};
    values.at(static_cast<std::size_t>(value))->clear();
    QTEST(catalogue::decide(offer, "23"), "decision");
}

void TestCatalogue::requiredDigest_data()
{
    const Rows<QString, bool> row("digest", "isGood");
    const QString good = "0123456789abcdef0123456789ABCDEFfedcba9876543210FEDCBA9876543210";
    row("64 digits", good, true);
    row("none", {}, false);
    row("empty", "", false);
    row("63 digits", good.mid(1), false);
    row("65 digits", good + '0', false);
    row("g is none", good.mid(1) + 'g', false);
    row("the first is a G", 'G' + good.mid(1), false);
    row("a blank behind them", good + ' ', false);
    row("a line end behind them", good + '\n', false);
    row("a blank instead of the first", ' ' + good.mid(1), false);
    row("a digit of another script", good.mid(1) + QChar(0x0661), false);
}

/// Nobody demands it but a program with a key.
void TestCatalogue::requiredDigest()
{
    QFETCH(QString, digest);
    QFETCH(bool, isGood);
    catalogue::Offer offer = goodOffer();
    offer.imageDigest = digest;
    QCOMPARE(catalogue::isDigest(digest), isGood);
    QCOMPARE(catalogue::decide(offer, "23", true), isGood ? Decision::newerFirmware : Decision::incomplete);
    QCOMPARE(catalogue::decide(offer, "23"), Decision::newerFirmware);
}

void TestCatalogue::digestOfAnImage()
{
    QCOMPARE(catalogue::digestOf("abc"),
             QString("ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad"));
}

void TestCatalogue::number_data()
{
    const Rows<QString, double> row("text", "value");
    row("whole", "27", 27.0);
    row("fraction", "1.05", 1.05);
    row("leading noughts", "007", 7.0);
    row("point last", "27.", 27.0);
    row("point first", ".5", 0.5);
    row("signs", "+3", 3.0);
    row("negative", "-3", -3.0);
    row("exponent", "1e2", 100.0);
    row("half an exponent", "1e", 1.0);
    row("something behind it", "27=x", 27.0);
    row("second point", "1.2.3", 1.2);
    row("comma", "27,5", 27.0);
    row("blanks before it", "  27", 27.0);
    row("letters first", "v27", 0.0);
    row("empty", "", 0.0);
    row("point only", ".", 0.0);
    row("no infinity", "inf", 0.0);
    row("no nan", "nan", 0.0);
}

void TestCatalogue::number()
{
    QFETCH(QString, text);
    QTEST(catalogue::leadingNumber(text), "value");
}

void TestCatalogue::numberInAnyLocale()
{
    const QLocale before;
    QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));
    const double point = catalogue::leadingNumber("1.5");
    const double comma = catalogue::leadingNumber("1,5");
    QLocale::setDefault(before);
    QCOMPARE(point, 1.5);
    QCOMPARE(comma, 1.0);
}

QTEST_GUILESS_MAIN(TestCatalogue)
#include "tst_catalogue.moc"
