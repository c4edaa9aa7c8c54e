// The real HID library on a real bus: the virtual one, on which most tests run, has to be like it.

#include "tests/usb/pluggedunits.h"
#include "tests/virtualunit/observations.h"

#include <QtTest>

namespace {

struct Run
{
    QStringList lines;
    QString errors;
    int exitCode = -1;
};

Run run(const QString& command, const QStringList& arguments)
{
    QProcess process;
    process.start(command, arguments);
    if (!process.waitForFinished(limits::hangMs()))
        return {{}, process.errorString()};
    return {QString::fromUtf8(process.readAllStandardOutput()).split('\n', Qt::SkipEmptyParts),
            QString::fromUtf8(process.readAllStandardError()), process.exitCode()};
}

} // namespace

Q_DECLARE_METATYPE(Observation)

class tst_usblibrary : public QObject
{
    Q_OBJECT

private slots:
    void everybody_data();
    void everybody();
    void ordinaryUser();
};

void tst_usblibrary::everybody_data()
{
    QTest::addColumn<Observation>("observation");
    for (const Observation& observation : allObservations())
        QTest::newRow(observation.name) << observation;
}

void tst_usblibrary::everybody()
{
    QFETCH(Observation, observation);
    PluggedUnits units;
    MUST(units.plugIn(observation.units, ""));
    const Run seen = run(TALVEX_HID_OBSERVER, {observation.scene});
    QCOMPARE(seen.errors, QString());
    QCOMPARE(seen.lines, observation.expected);
    QCOMPARE(seen.exitCode, 0);
}

void tst_usblibrary::ordinaryUser()
{
    const Observation forbidden = forbiddenUnit();
    PluggedUnits units;
    MUST(units.plugIn(forbidden.units, ""));
    const Run seen = run(
        "setpriv", {"--reuid=1000", "--regid=1000", "--clear-groups", TALVEX_HID_OBSERVER, forbidden.scene});
    QCOMPARE(seen.errors, QString());
    QCOMPARE(seen.lines, forbidden.expected);
}

QTEST_GUILESS_MAIN(tst_usblibrary)

#include "tst_usblibrary.moc"
