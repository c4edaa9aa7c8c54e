#include "tests/virtualunit/observations.h"

#include <QProcess>
#include <QTest>

Q_DECLARE_METATYPE(Observation)

/// The virtual HID library beside the real one: what a program sees of a unit on a real bus, it sees here
/// too.
class TestVirtualLibrary : public QObject
{
    Q_OBJECT

private slots:
    void likeTheRealOne_data();
    void likeTheRealOne();
};

void TestVirtualLibrary::likeTheRealOne_data()
{
    QTest::addColumn<Observation>("observation");
    for (const Observation& observation : allObservations())
        QTest::newRow(observation.name) << observation;
    Observation forbidden = forbiddenUnit();
    forbidden.units.first() += ",fault=no-permission";
    QTest::newRow(forbidden.name) << forbidden;
}

void TestVirtualLibrary::likeTheRealOne()
{
    QFETCH(Observation, observation);
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("LD_PRELOAD", TALVEX_VIRTUAL_HID);
    environment.insert("TALVEX_VIRTUAL_UNITS", observation.units.join(';'));
    QProcess observer;
    observer.setProcessEnvironment(environment);
    observer.start(TALVEX_HID_OBSERVER, {observation.scene});
    QVERIFY2(observer.waitForFinished(limits::hangMs()), qPrintable(observer.errorString()));
    QCOMPARE(QString::fromUtf8(observer.readAllStandardError()), QString());
    QCOMPARE(QString::fromUtf8(observer.readAllStandardOutput()).split('\n'),
             observation.expected + QStringList{""});
    QCOMPARE(observer.exitCode(), 0);
}

QTEST_APPLESS_MAIN(TestVirtualLibrary)
#include "tst_virtuallibrary.moc"
