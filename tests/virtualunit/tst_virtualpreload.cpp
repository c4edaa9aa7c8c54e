#include "tests/support/filecontent.h"
#include "tests/virtualunit/observations.h"

#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

namespace {

struct Run
{
    QByteArray output;
    QByteArray errors;
    int exitCode = -1;
};

/// Runs hidobserver with these units; what it calls is written to the file `trace`, if there is to be one.
Run run(const QString& units, const char* scene, const QString& trace = {})
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("LD_PRELOAD", TALVEX_VIRTUAL_HID);
    environment.insert("TALVEX_VIRTUAL_UNITS", units);
    if (!trace.isEmpty())
        environment.insert("TALVEX_VIRTUAL_HID_TRACE", trace);
    QProcess observer;
    observer.setProcessEnvironment(environment);
    observer.start(TALVEX_HID_OBSERVER, {scene});
    if (!observer.waitForFinished(limits::hangMs()))
        return {{}, observer.errorString().toUtf8()};
    return {observer.readAllStandardOutput(), observer.readAllStandardError(), observer.exitCode()};
}

/// Of the units that the environment names.
std::vector<Observation> ownObservations()
{
    return {
        {"none", "use", {}, {}},
        {"one", "use", {"hb4,version=23"}, {"0a21 HB4 open read 64 version 23 written 65"}},
        {"a pair of decks",
         "use",
         {"trk300-left,version=9", "trk300-right,version=11"},
         {"2a40 TRK-300 R open read 64 version 11 written 65",
          "2a41 TRK-300 L open read 64 version 9 written 65"}},
        {"one with faults", "use", {"plt65,fault=cannot-open"}, {"2c01 PLT-65 closed"}},
        {"one that takes nothing",
         "use",
         {"plt65,fault=takes-nothing:1"},
         {"2c01 PLT-65 open read 64 version 10 written -1"}},
        {"product string",
         "use",
         {"zeq-pro,product=ZEQ PRO"},
         {"0b06 ZEQ PRO open read 64 version 10 written 65"}},
        {"end under a blocked read", "leave-a-reader", {"hb4,period-ms=0"}, {"reading"}},
    };
}

} // namespace

Q_DECLARE_METATYPE(Observation)

/// The virtual HID library under a program that knows nothing of it and is linked to the system's. What that
/// sees of a unit on a real bus, it sees here too.
class TestVirtualPreload : public QObject
{
    Q_OBJECT

private slots:
    void seen_data();
    void seen();
    void mistakeLeavesNoUnit();
    void traceAndJournalAreWritten();
};

void TestVirtualPreload::seen_data()
{
    QTest::addColumn<Observation>("observation");
    Observation forbidden = forbiddenUnit();
    forbidden.units.first() += ",fault=no-permission";
    for (const auto& group : {allObservations(), std::vector{forbidden}, ownObservations()})
        for (const Observation& observation : group)
            QTest::newRow(observation.name) << observation;
}

void TestVirtualPreload::seen()
{
    QFETCH(Observation, observation);
    const Run observer = run(observation.units.join(';'), observation.scene);
    QCOMPARE(observer.errors, QByteArray());
    QCOMPARE(QString::fromUtf8(observer.output).split('\n'), observation.expected + QStringList{""});
    QCOMPARE(observer.exitCode, 0);
}

void TestVirtualPreload::mistakeLeavesNoUnit()
{
    const Run observer = run("hb4;hb4,version=high", "use");
    QCOMPARE(observer.output, QByteArray());
    QCOMPARE(observer.errors,
             QByteArray("talvex-virtual-hid: TALVEX_VIRTUAL_UNITS: bad value in version=high\n"));
    QCOMPARE(observer.exitCode, 0);
}

void TestVirtualPreload::traceAndJournalAreWritten()
{
    const QTemporaryDir folder;
    const QString trace = folder.filePath("trace");
    const QString journal = folder.filePath("journal");
    run("hb4,journal=" + journal, "use", trace);
    QCOMPARE(contentOf(journal), QByteArray("opened\nerror packet-unexpected\nclosed\n"));
    const QString bytes = "00055555" + QString("55").repeated(60) + "0a";
    QCOMPARE(QString(contentOf(trace)),
             (QStringList{"hid_enumerate vendor=3a5d product=0000 result=1",
                          "hid_open_path path=virtual:1 result=1",
                          "hid_read_timeout handle=1 length=64 timeout=1000 result=64",
                          "hid_write handle=1 length=65 bytes=" + bytes + " result=65", "hid_close handle=1",
                          "hid_free_enumeration", ""})
                 .join('\n'));
}

QTEST_APPLESS_MAIN(TestVirtualPreload)
#include "tst_virtualpreload.moc"
