#include "tests/support/rows.h"
#include "vendor/models.h"
#include "vendor/options.h"

#include <QtTest>

class TestVendorOptions : public QObject
{
    Q_OBJECT

private slots:
    void misuse_data();
    void misuse();
    void answers_data();
    void answers();
    void check();
    void checkAlone();
    void hash();
    void stem_data();
    void stem();
    void everyModelByName();
};

namespace {

options::Command read(const QStringList& arguments)
{
    return options::read(QStringList("talvex-catalogue") + arguments);
}

} // namespace

void TestVendorOptions::misuse_data()
{
    const Rows<QStringList, QString> row("arguments", "why");
    row("nothing", {}, "give a command: check or hash");
    row("another command", {"sign", "x"}, "there is no command sign");
    row("control character", {"\033x"}, "there is no command \\u{1B}x");
    row("unknown option", {"check", "x", "--fast"}, "Unknown option 'fast'.");
    row("check without a file", {"check"}, "check takes one file or address");
    row("check of two files", {"check", "x", "y"}, "check takes one file or address");
    row("as without a version", {"check", "x", "--as", "hb4"}, "not a model and version like hb4=23: hb4");
    row("as with no number", {"check", "x", "--as", "hb4=2.3"},
        "not a model and version like hb4=23: hb4=2.3");
    row("as with a version that no unit has", {"check", "x", "--as", "hb4=256"},
        "not a model and version like hb4=23: hb4=256");
    row("as with a negative version", {"check", "x", "--as", "hb4=-1"},
        "not a model and version like hb4=23: hb4=-1");
    row("as with no model", {"check", "x", "--as", "hb5=23"}, "not a model and version like hb4=23: hb5=23");
    row("no time", {"check", "x", "--timeout", "0"}, "not a number of seconds from 1 to 3600: 0");
    row("too long a time", {"check", "x", "--timeout", "3601"},
        "not a number of seconds from 1 to 3600: 3601");
    row("time in words", {"check", "x", "--timeout", "1s"}, "not a number of seconds from 1 to 3600: 1s");
    row("no key", {"check", "x", "--key", "RWx"}, "not a minisign public key: RWx");
    row("hash without a file", {"hash", "--image", "HB4=x"}, "hash takes one file");
    row("hash of two files", {"hash", "x", "y", "--image", "HB4=x"}, "hash takes one file");
    row("hash without an image", {"hash", "x"}, "hash needs an --image");
    row("image of no stem", {"hash", "x", "--image", "HB5=x"},
        "not a key stem and path like HB4=PATH: HB5=x");
    row("image by a model's name", {"hash", "x", "--image", "ZEQ IO=x"},
        "not a key stem and path like HB4=PATH: ZEQ IO=x");
    row("image without a path", {"hash", "x", "--image", "HB4="},
        "not a key stem and path like HB4=PATH: HB4=");
    row("two images for a stem", {"hash", "x", "--image", "HB4=x", "--image", "HB4=x"}, "two images for HB4");
    row("two in either case", {"hash", "x", "--image", "HB4=x", "--image", "hb4=y"}, "two images for HB4");
    row("option of the other command", {"hash", "x", "--image", "HB4=x", "--json"}, "Unknown option 'json'.");
}

void TestVendorOptions::misuse()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, why);
    const options::Command command = read(arguments);
    QVERIFY(std::holds_alternative<options::Message>(command));
    QCOMPARE(std::get<options::Message>(command).exitCode, 2);
    QCOMPARE(std::get<options::Message>(command).text,
             "talvex-catalogue: " + why + "\nTry talvex-catalogue --help.\n");
}

void TestVendorOptions::answers_data()
{
    const Rows<QStringList, QString> row("arguments", "part");
    row("help", {"--help"}, "hash FILE");
    row("help of check", {"check", "--help"}, "--as <MODEL=VERSION>");
    row("help of hash", {"hash", "-h"}, "--image <STEM=PATH>");
    row("help goes before a misuse", {"check", "--fast", "--help"}, "--as <MODEL=VERSION>");
    row("version", {"--version"}, "talvex-catalogue 9.9\n");
    row("version of a command", {"hash", "-v"}, "talvex-catalogue 9.9\n");
}

void TestVendorOptions::answers()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, part);
    QCoreApplication::setApplicationVersion("9.9");
    const options::Command command = read(arguments);
    QVERIFY(std::holds_alternative<options::Message>(command));
    const auto& message = std::get<options::Message>(command);
    QCOMPARE(message.exitCode, 0);
    QVERIFY2(message.text.contains(part), qPrintable(message.text));
}

void TestVendorOptions::check()
{
    const QString key = QByteArray("Ed" + QByteArray(40, 'k')).toBase64();
    const options::Command command = read({"check", "--as", "hb4=23", "versions.txt", "--json", "--as",
                                           "trk900-right=255", "--fetch", "--timeout", "3600", "--key", key});
    QVERIFY(std::holds_alternative<options::Check>(command));
    const auto& check = std::get<options::Check>(command);
    QCOMPARE(check.source, QString("versions.txt"));
    QVERIFY(check.json);
    QVERIFY(check.fetch);
    QCOMPARE(check.timeoutMs, 3600000);
    QVERIFY(check.key.has_value());
    QCOMPARE(check.viewers.size(), 2);
    QCOMPARE(check.viewers[0].name, QString("hb4"));
    QCOMPARE(check.viewers[0].stem, QString("HB4"));
    QCOMPARE(check.viewers[0].version, 23);
    QCOMPARE(check.viewers[1].stem, QString("PLT70"));
    QCOMPARE(check.viewers[1].version, 255);
}

void TestVendorOptions::checkAlone()
{
    const options::Command command = read({"check", "http://host/versions.txt"});
    QVERIFY(std::holds_alternative<options::Check>(command));
    const auto& check = std::get<options::Check>(command);
    QVERIFY(!check.json);
    QVERIFY(!check.fetch);
    QVERIFY(check.viewers.isEmpty());
    QVERIFY(!check.key.has_value());
    QCOMPARE(check.timeoutMs, 30000); // as the program
}

void TestVendorOptions::hash()
{
    const options::Command command =
        read({"hash", "versions.txt", "--image", "HB4=a=b", "--image", "plt70=c"});
    QVERIFY(std::holds_alternative<options::Hash>(command));
    const auto& hash = std::get<options::Hash>(command);
    QCOMPARE(hash.file, QString("versions.txt"));
    QCOMPARE(hash.images.size(), 2);
    QCOMPARE(hash.images[0].stem, QString("HB4"));
    QCOMPARE(hash.images[0].path, QString("a=b"));
    QCOMPARE(hash.images[1].stem, QString("PLT70"));
}

void TestVendorOptions::stem_data()
{
    const Rows<QString, QString> row("meant", "stem");
    row("stem", "ZEQPRO", "ZEQPRO");
    row("lower case", "zeqpro", "ZEQPRO");
    row("model", "zeq-io", "ZEQPRO");
    row("model with a blank", "TRK900 RIGHT", "PLT70");
    row("model with a line", "trk300_left", "PLT70");
    row("model of a stem of its own", "lmb-1", "LMB1");
    row("sibling", "dsk5", "DSK10");
    row("siblings together are no name", "dsk10/dsk9", {});
    row("two decks are no model", "trk900", {});
    row("nothing", "", {});
}

void TestVendorOptions::stem()
{
    QFETCH(QString, meant);
    QTEST(models::stemMeant(meant).value_or(QString()), "stem");
}

void TestVendorOptions::everyModelByName()
{
    QStringList names;
    for (const UnitModel& model : unitModels) {
        names.append(models::nameOf(model));
        for (const QString& name : names.last().split('/'))
            QCOMPARE(models::stemMeant(name), std::optional<QString>(model.catalogueStem));
    }
    QCOMPARE(names.join(", "),
             QString("HB4, HB2, HBX, ZEQ PRO, ZEQ IO, PANEL2V, PANEL4V, DSK10/DSK9, DSK6/DSK5, "
                     "LMB-1, LMB-2, PLT70, TRK300 LEFT, TRK300 RIGHT, TRK900 LEFT, "
                     "TRK900 RIGHT, PLT65"));
    QCOMPARE(models::stems(),
             QStringList({"HB4", "HB2", "HBX", "ZEQPRO", "PANEL", "DSK10", "LMB1", "LMB2", "PLT70"}));
}

QTEST_GUILESS_MAIN(TestVendorOptions)
#include "tst_vendoroptions.moc"
