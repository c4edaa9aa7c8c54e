#include "net/catalogue.h"
#include "tests/support/models.h"
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
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<Entries>("entries");
    const auto row = [](const char* name, const QByteArray& bytes, const Entries& entries) {
        QTest::newRow(name) << bytes << entries;
    };
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
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QByteArray>("kept");
    QTest::newRow("none") << QByteArray("A=1\n") << QByteArray("A=1\n");
    QTest::newRow("before the line end") << QByteArray("A=27\r\nB=2\r\n") << QByteArray("A=27\nB=2\n");
    QTest::newRow("within a line") << QByteArray("A\r=\r1\r\n") << QByteArray("A=1\n");
    QTest::newRow("several") << QByteArray("\r\r\r") << QByteArray("");
    QTest::newRow("behind a NUL byte") << QByteArray("A\0\rB", 4) << QByteArray("A\0B", 3);
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
    QTest::addColumn<UnitType>("type");
    QTest::addColumn<QString>("stem");
    for (const models::Model& model : models::all)
        QTest::newRow(model.option) << model.type << QString(model.stem);
    QTest::newRow("no model") << static_cast<UnitType>(models::count) << "HB2";
}

void TestCatalogue::stemOfModel()
{
    QFETCH(UnitType, type);
    QFETCH(QString, stem);
    QCOMPARE(catalogue::keyStem(type), stem);
}

void TestCatalogue::decides_data()
{
    QTest::addColumn<QString>("updater");
    QTest::addColumn<QString>("firmware");
    QTest::addColumn<QString>("unit");
    QTest::addColumn<Decision>("decision");
    const QString zero = "0";
    const auto row = [](const char* name, const QString& updater, const char* firmware, const char* unit,
                        Decision decision) {
        QTest::newRow(name) << updater << firmware << unit << decision;
    };
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
    QTest::addColumn<int>("value");
    QTest::addColumn<Decision>("decision");
    QTest::newRow("firmware version") << 0 << Decision::incomplete;
    QTest::newRow("image address") << 1 << Decision::incomplete;
    QTest::newRow("change log address") << 2 << Decision::incomplete;
    QTest::newRow("updater version") << 3 << Decision::incomplete;
    QTest::newRow("updater address") << 4 << Decision::incomplete;
    QTest::newRow("the updater's change log address is not needed") << 5 << Decision::newerUpdater;
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
    QTest::addColumn<QString>("digest");
    QTest::addColumn<bool>("isGood");
    const QString good = "0123456789abcdef0123456789ABCDEFfedcba9876543210FEDCBA9876543210";
    QTest::newRow("64 digits") << good << true;
    QTest::newRow("none") << QString() << false;
    QTest::newRow("empty") << "" << false;
    QTest::newRow("63 digits") << good.mid(1) << false;
    QTest::newRow("65 digits") << good + '0' << false;
    QTest::newRow("g is none") << good.mid(1) + 'g' << false;
    QTest::newRow("the first is a G") << 'G' + good.mid(1) << false;
    QTest::newRow("a blank behind them") << good + ' ' << false;
    QTest::newRow("a line end behind them") << good + '\n' << false;
    QTest::newRow("a blank instead of the first") << ' ' + good.mid(1) << false;
    QTest::newRow("a digit of another script") << good.mid(1) + QChar(0x0661) << false;
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
    QTest::addColumn<QString>("text");
    QTest::addColumn<double>("value");
    QTest::newRow("whole") << "27" << 27.0;
    QTest::newRow("fraction") << "1.05" << 1.05;
    QTest::newRow("leading noughts") << "007" << 7.0;
    QTest::newRow("point last") << "27." << 27.0;
    QTest::newRow("point first") << ".5" << 0.5;
    QTest::newRow("signs") << "+3" << 3.0;
    QTest::newRow("negative") << "-3" << -3.0;
    QTest::newRow("exponent") << "1e2" << 100.0;
    QTest::newRow("half an exponent") << "1e" << 1.0;
    QTest::newRow("something behind it") << "27=x" << 27.0;
    QTest::newRow("second point") << "1.2.3" << 1.2;
    QTest::newRow("comma") << "27,5" << 27.0;
    QTest::newRow("blanks before it") << "  27" << 27.0;
    QTest::newRow("letters first") << "v27" << 0.0;
    QTest::newRow("empty") << "" << 0.0;
    QTest::newRow("point only") << "." << 0.0;
    QTest::newRow("no infinity") << "inf" << 0.0;
    QTest::newRow("no nan") << "nan" << 0.0;
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
