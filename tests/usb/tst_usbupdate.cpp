// Updates over a real bus: whole ones, at the pace of a bare loop, and all that a unit may answer instead.

#include "tests/harness/waiting.h"
#include "tests/program/programtest.h"
#include "tests/program/scenario.h"
#include "tests/support/transferfaults.h"
#include "tests/usb/otherprogram.h"
#include "tests/usb/pluggedunits.h"

#include <QtTest>

namespace {

// Not 1 MB unless told so: each of those takes a guest half a minute.
constexpr int wholeSize = TALVEX_USB_ALL ? 1'000'000 : 300'000;
constexpr int wholeReports = wholeSize / 60 + 1;
constexpr int bareReports = 3000;
constexpr int smallSize = 6000;

/// Waits for a file with long pauses: whoever is measured shall have the processor.
bool seesFile(const QString& path)
{
    constexpr unsigned long pauseMs = 200;
    const QDeadlineTimer limit(limits::hang());
    while (!QFile::exists(path) && !limit.hasExpired())
        QThread::msleep(pauseMs);
    return QFile::exists(path);
}

/// Reports a second of the transfer to the unit `label`, from its acceptance to its last packet; 0: it came
/// to nothing. Nobody looks at the program meanwhile. The unit's journal is not written to during a transfer,
/// and its image once, at the end.
double reportsPerSecond(const Program& program, const QString& label)
{
    const QFileInfo journal(program.scratchPath(label + ".journal"));
    const QFileInfo image(program.scratchPath(label + ".image"));
    const auto accepted = [&] { return scenario::journal(program, label).contains("accepted"); };
    if (!waitUntil(accepted))
        return 0;
    const QDateTime begin = journal.lastModified();
    if (!seesFile(image.filePath()))
        return 0;
    return wholeReports * 1000.0 / static_cast<double>(begin.msecsTo(image.lastModified()));
}

/// Adds a line to the table that is shown at the end of all tests.
bool noteRate(const QString& what, double program, double bareLoop)
{
    QFile file(qEnvironmentVariable("TALVEX_TEST_RATES"));
    const QString line = QString("%1 %2 %3 %4 %5\n")
                             .arg(flavour(), -8)
                             .arg(what, -8)
                             .arg(program, 10, 'f', 0)
                             .arg(bareLoop, 10, 'f', 0)
                             .arg(program / bareLoop, 8, 'f', 3);
    return file.open(QIODevice::Append) && file.write(line.toUtf8()) == line.size() && file.flush();
}

} // namespace

class tst_usbupdate : public ServedProgramTest
{
    Q_OBJECT

private slots:
    void wholeUpdate_data();
    void wholeUpdate();
    void otherAnswers_data();
    void otherAnswers();
    void unitThatTakesNothing();
};

void tst_usbupdate::wholeUpdate_data()
{
    QTest::addColumn<QByteArray>("name");
    for (const char* name : {"hb4", "plt70", "trk300"})
        QTest::newRow(name) << QByteArray(name);
}

void tst_usbupdate::wholeUpdate()
{
    QFETCH(QByteArray, name);
    const models::Connection connection = models::connectionOf(name);
    const QByteArray whole = imageOf(wholeSize);
    Program program(desktop);
    useRealBus(program);
    MUST(scenario::offer(program, server, connection, whole));
    PluggedUnits units;
    MUST(units.plugIn(scenario::options(program, connection)));
    MUST(program.start());
    MUST(scenario::connectAndDownload(program, connection.message()));
    MUST(program.press("updateDeviceButton"));
    const double rate = reportsPerSecond(program, connection.units.first().option);
    MUST(scenario::seeFinished(program));
    MUST(units.seeGivenBack());

    for (const models::Model& unit : connection.units) {
        QVERIFY(scenario::receivedImage(program, unit.option) == whole);
        QTRY_COMPARE(scenario::journal(program, unit.option), scenario::faultlessJournal(whole));
    }
    const double bareRate = OtherProgram::pacedRate(flavour(), bareReports);
    QVERIFY(rate > 0 && bareRate > 0);
    QVERIFY(noteRate(QTest::currentDataTag(), rate, bareRate));
}

void tst_usbupdate::otherAnswers_data()
{
    QTest::addColumn<QString>("transfer"); // the label above the transfer's bar
    int row = 0;
    for (const TransferFault& fault : transferFaults()) {
        const QString option = fault.option;
        const bool hasOwnTest = option.startsWith("unplugged") || option == "takes-nothing";
        if (!hasOwnTest && takesRow(row++))
            QTest::newRow(fault.option) << (fault.transfer == nullptr ? text::transferIdle : fault.transfer);
    }
}

void tst_usbupdate::otherAnswers()
{
    QFETCH(QString, transfer);
    const TransferFault& expected = transferFaultOfRow();
    const QByteArray image = imageOf(smallSize);
    Program program(desktop);
    useRealBus(program);
    MUST(program.placeFile(filename::service, image)); // so that no server is asked
    PluggedUnits units;
    const QString fault = QString(",fault=") + QTest::currentDataTag();
    MUST(units.plugIn({scenario::unitOptions(program, "hb4", fault)}));
    MUST(program.start());
    MUST(scenario::updateByHand(program));
    if (expected.box != nullptr) {
        MUST(program.waitForBox(errorBox(expected.box, expected.title)));
        MUST(program.answer("Ok"));
    }
    const QStringList opened = scenario::faultlessJournal(image).mid(0, 2); // and the request
    QTRY_COMPARE(scenario::journal(program), opened + expected.journal);
    MUST(program.waitForText("labelTransfer", transfer));
    MUST(program.staysAway("another box", &View::hasBox));
    MUST(scenario::closeAndWait(program));
    MUST(units.seeGivenBack());
}

void tst_usbupdate::unitThatTakesNothing()
{
    Program program(desktop);
    useRealBus(program);
    MUST(program.placeFile(filename::service, imageOf(smallSize)));
    PluggedUnits units;
    MUST(units.plugIn({scenario::unitOptions(program, "hb4", ",fault=takes-nothing")}));
    MUST(units.fillUp());
    MUST(program.start());
    MUST(scenario::updateByHand(program));
    MUST(program.waitForBox(errorBox(text::noRequest, text::deviceError)));
    MUST(program.answer("Ok"));
    MUST(scenario::closeAndWait(program));
    MUST(units.seeGivenBack());
}

QTEST_GUILESS_MAIN(tst_usbupdate)

#include "tst_usbupdate.moc"
