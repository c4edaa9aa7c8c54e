#include "tests/support/filecontent.h"
#include "tests/virtualunit/host.h"

#include <QDir>
#include <QTemporaryDir>
#include <QTest>

using host::Bytes;
using host::Host;

/// The text that describes units, its mistakes, and the files that it names.
class TestVirtualOptions : public QObject
{
    Q_OBJECT

private slots:
    void mistakes_data();
    void mistakes();
    void severalUnits();
    void imageFileIsWrittenWhole();
    void journalFileIsAppended();
};

void TestVirtualOptions::mistakes_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("error");
    const auto row = [](const char* name, const QString& text, const QString& error) {
        QTest::newRow(name) << text << error;
    };
    row("no such model", "hb5", "unknown model hb5");
    row("capital letters", "HB4", "unknown model HB4");
    row("nothing behind the last ;", "hb4;", "unknown model ");
    row("no such key", "hb4,colour=red", "unknown key colour");
    row("no value", "hb4,version", "no '=' in version");
    row("version too large", "hb4,version=256", "bad value in version=256");
    row("version not a number", "hb4,version=1x", "bad value in version=1x");
    row("negative time", "hb4,period-ms=-1", "bad value in period-ms=-1");
    row("empty path", "hb4,image=", "bad value in image=");
    row("log that is not there", "hb4,log=/nonexistent/log", "bad value in log=/nonexistent/log");
    row("neither yes nor no", "hb4,floods-log=1", "bad value in floods-log=1");
    row("no such fault", "hb4,fault=sulks", "unknown fault sulks");
    row("fault without its number", "hb4,fault=loses-packet", "fault loses-packet needs a number");
    row("fault with a number too much", "hb4,fault=no-log:1", "fault no-log takes no number");
    row("fault with a bad number", "hb4,fault=loses-packet:x", "fault loses-packet:x: not a number");
    row("second unit wrong", "hb4;hb9", "unknown model hb9");
}

void TestVirtualOptions::mistakes()
{
    QFETCH(QString, text);
    QFETCH(QString, error);
    const virtualunit::ParsedOptions parsed = virtualunit::parseOptions(text.toStdString());
    QCOMPARE(QString::fromStdString(parsed.error), error);
    QVERIFY(parsed.units.empty());
}

void TestVirtualOptions::severalUnits()
{
    const auto parsed =
        virtualunit::parseOptions("trk300-left,version=9;zeq-io,product=ZEQ IO;lmb1,no-product=yes");
    QCOMPARE(QString::fromStdString(parsed.error), QString());
    QCOMPARE(parsed.units.size(), std::size_t(3));
    QCOMPARE(int(parsed.units[0].version), 9);
    QVERIFY(virtualunit::productOf(parsed.units[1]) == "ZEQ IO");
    QVERIFY(!virtualunit::productOf(parsed.units[2]));
    QVERIFY(virtualunit::parseOptions("").units.empty());
}

void TestVirtualOptions::imageFileIsWrittenWhole()
{
    QTemporaryDir folder;
    const QString path = folder.filePath("image");
    const Bytes image = imageOf(130);
    Host host("hb4,image=" + path);
    host.write(host::request(host::older, host::digestOf(image)));
    const QList<Bytes> reports = host::packets(host::older, image);
    host.write(reports.at(0));
    host.write(reports.at(1));
    QVERIFY(QDir(folder.path()).isEmpty());
    host.write(reports.at(2));
    QCOMPARE(contentOf(path), image);
    QCOMPARE(QDir(folder.path()).entryList(QDir::Files), QStringList("image"));
}

void TestVirtualOptions::journalFileIsAppended()
{
    QTemporaryDir folder;
    const QString path = folder.filePath("journal");
    for (int i = 0; i < 2; ++i) {
        Host host("hb4,journal=" + path);
        host.unit.close(host.now);
        host.unit.unplug();
    }
    QCOMPARE(contentOf(path), Bytes("opened\nclosed\nunplugged\nopened\nclosed\nunplugged\n"));
}

QTEST_APPLESS_MAIN(TestVirtualOptions)
#include "tst_virtualoptions.moc"
