#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

/// The virtual HID library under a program that knows nothing of it and is linked to the system's.
class TestVirtualPreload : public QObject
{
    Q_OBJECT

private slots:
    void unitsOfTheEnvironment_data();
    void unitsOfTheEnvironment();
    void mistakeLeavesNoUnit();
    void traceAndJournalAreWritten();
    void processEndsUnderABlockedRead();

private:
    struct Run
    {
        QByteArray output;
        QByteArray errors;
        int exitCode = -1;
    };
    static Run run(const QString& units, const QString& trace = {}, const QStringList& arguments = {});
    static QByteArray contents(const QString& path);
};

TestVirtualPreload::Run TestVirtualPreload::run(const QString& units, const QString& trace,
                                                const QStringList& arguments)
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("LD_PRELOAD", TALVEX_VIRTUAL_HID);
    environment.insert("TALVEX_VIRTUAL_UNITS", units);
    if (!trace.isEmpty())
        environment.insert("TALVEX_VIRTUAL_HID_TRACE", trace);
    QProcess client;
    client.setProcessEnvironment(environment);
    client.start(TALVEX_HID_CLIENT, arguments);
    if (!client.waitForFinished(limits::hangMs()))
        return {};
    return {client.readAllStandardOutput(), client.readAllStandardError(), client.exitCode()};
}

QByteArray TestVirtualPreload::contents(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : "cannot be read";
}

void TestVirtualPreload::unitsOfTheEnvironment_data()
{
    QTest::addColumn<QString>("units");
    QTest::addColumn<QByteArray>("output");
    const auto row = [](const char* name, const QString& units, const QByteArray& output) {
        QTest::newRow(name) << units << output;
    };
    row("none", "", QByteArray());
    row("one", "hb4,version=23", QByteArray("0a21 HB4 open read 64 version 23 written 65\n"));
    row("a pair of decks", "trk300-left,version=9;trk300-right,version=11",
        QByteArray("2a40 TRK-300 R open read 64 version 11 written 65\n"
                   "2a41 TRK-300 L open read 64 version 9 written 65\n"));
    row("one with faults", "plt65,fault=cannot-open", QByteArray("2c01 PLT-65 closed\n"));
    row("one that takes nothing", "plt65,fault=takes-nothing:1",
        QByteArray("2c01 PLT-65 open read 64 version 10 written -1\n"));
    row("product string", "zeq-pro,product=ZEQ PRO",
        QByteArray("0b06 ZEQ PRO open read 64 version 10 written 65\n"));
}

void TestVirtualPreload::unitsOfTheEnvironment()
{
    QFETCH(QString, units);
    QFETCH(QByteArray, output);
    const Run client = run(units);
    QCOMPARE(client.output, output);
    QCOMPARE(client.errors, QByteArray());
    QCOMPARE(client.exitCode, 0);
}

void TestVirtualPreload::mistakeLeavesNoUnit()
{
    const Run client = run("hb4;hb4,version=high");
    QCOMPARE(client.output, QByteArray());
    QCOMPARE(client.errors,
             QByteArray("talvex-virtual-hid: TALVEX_VIRTUAL_UNITS: bad value in version=high\n"));
    QCOMPARE(client.exitCode, 0);
}

void TestVirtualPreload::traceAndJournalAreWritten()
{
    QTemporaryDir folder;
    const QString trace = folder.filePath("trace");
    const QString journal = folder.filePath("journal");
    run("hb4,journal=" + journal, trace);
    QCOMPARE(contents(journal), QByteArray("opened\nerror packet-unexpected\nclosed\n"));
    const QList<QByteArray> lines = contents(trace).split('\n');
    QCOMPARE(lines.size(), 7); // six lines and the end of the last
    QCOMPARE(lines[0], QByteArray("hid_enumerate vendor=3a5d product=0000 result=1"));
    QCOMPARE(lines[1], QByteArray("hid_open_path path=virtual:1 result=1"));
    QCOMPARE(lines[2], QByteArray("hid_read_timeout handle=1 length=64 timeout=1000 result=64"));
    const QByteArray bytes = "00055555" + QByteArray("55").repeated(60) + "0a";
    QCOMPARE(lines[3], QByteArray("hid_write handle=1 length=65 bytes=" + bytes + " result=65"));
    QCOMPARE(lines[4], QByteArray("hid_close handle=1"));
    QCOMPARE(lines[5], QByteArray("hid_free_enumeration"));
}

void TestVirtualPreload::processEndsUnderABlockedRead()
{
    const Run client = run("hb4,period-ms=0", {}, {"--leave-a-reader"});
    QCOMPARE(client.errors, QByteArray());
    QCOMPARE(client.output, QByteArray("reading\n"));
    QCOMPARE(client.exitCode, 0);
}

QTEST_APPLESS_MAIN(TestVirtualPreload)
#include "tst_virtualpreload.moc"
