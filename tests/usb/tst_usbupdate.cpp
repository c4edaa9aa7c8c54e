// Updates over a real bus: whole ones, at the pace of a bare loop, and all that a unit may answer instead.

#include "tests/harness/updateserver.h"
#include "tests/harness/waiting.h"
#include "tests/program/scenario.h"
#include "tests/usb/otherprogram.h"
#include "tests/usb/pluggedunits.h"

#include <QCryptographicHash>
#include <QtTest>

namespace {

constexpr int wholeSize = 1'000'000;
constexpr int wholeReports = wholeSize / 60 + 1;
constexpr int bareReports = 3000;
constexpr int smallSize = 6000;
const QString advice = "Check the connections between PC and the unit and to try the update again.";

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

class tst_usbupdate : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();

    void wholeUpdate_data();
    void wholeUpdate();
    void otherAnswers_data();
    void otherAnswers();
    void unitThatTakesNothing();

private:
    Desktop desktop;
    UpdateServer server;
};

void tst_usbupdate::initTestCase()
{
    MUST(desktop.start());
    MUST(server.start());
}

void tst_usbupdate::wholeUpdate_data()
{
    QTest::addColumn<QStringList>("models");
    QTest::addColumn<QString>("stem");
    QTest::addColumn<QString>("message");
    QTest::newRow("hb4") << QStringList{"hb4"} << "HB4"
                         << "HB4 connected";
    QTest::newRow("plt70") << QStringList{"plt70"} << "PLT70"
                           << "PLT70 connected";
    QTest::newRow("trk300") << QStringList{"trk300-left", "trk300-right"} << "PLT70"
                            << "TRK300 connected";
}

void tst_usbupdate::wholeUpdate()
{
    QFETCH(QStringList, models);
    QFETCH(QString, stem);
    QFETCH(QString, message);
    const QByteArray whole = scenario::image(wholeSize);
    MUST(publishFirmware(server, stem, scenario::offeredVersion, whole, scenario::changeLog));

    Program program(desktop);
    useRealBus(program);
    program.setVariable("http_proxy", server.proxy());
    QStringList options;
    for (const QString& model : models)
        options += scenario::unitOptions(program, model, {}, model);
    PluggedUnits units;
    MUST(units.plugIn(options));
    MUST(program.start());
    MUST(scenario::connectAndDownload(program, message));
    MUST(program.press("updateDeviceButton"));
    const double rate = reportsPerSecond(program, models.first());
    MUST(scenario::seeFinished(program));
    MUST(units.seeGivenBack());

    for (const QString& model : models) {
        QVERIFY(scenario::receivedImage(program, model) == whole);
        QTRY_COMPARE(scenario::journal(program, model), scenario::faultlessJournal(whole));
    }
    const double bareRate = OtherProgram::pacedRate(flavour(), bareReports);
    QVERIFY(rate > 0 && bareRate > 0);
    QVERIFY(noteRate(QTest::currentDataTag(), rate, bareRate));
}

void tst_usbupdate::otherAnswers_data()
{
    QTest::addColumn<QString>("box");         // "": none
    QTest::addColumn<QString>("transfer");    // the label above the transfer's bar
    QTest::addColumn<QStringList>("journal"); // after "opened" and the request

    const QString noBox;
    const QString timedOut = "Transfer timeout failed.\n" + advice;
    const QString skipped = "Transfer failed. Packets skipped.\n" + advice;
    const QString wrongDigest = "Transfer failed. Wrong md5.\n" + advice;
    const QString rejected = "Updating failed. Wrong file or some internal error.\n" + advice;
    const QString idle = "Transfer:";
    const QString sent = "Transfer: in progress";
    const QString completed = "Transfer: completed";
    const QStringList arrived{"accepted", "image-complete size=6000"};

    QTest::newRow("never-answers") << noBox << idle << QStringList{"unanswered"};
    QTest::newRow("refuses-timeout") << timedOut << idle << QStringList{"refused timeout"};
    QTest::newRow("refuses-skipped") << skipped << idle << QStringList{"refused skipped"};
    QTest::newRow("loses-packet:5") << wrongDigest << sent
                                    << QStringList{"accepted", "lost packet=5",
                                                   "error packet-number expected=5 got=6",
                                                   "image-complete size=5940", "verdict wrong-digest"};
    QTest::newRow("wrong-digest") << wrongDigest << sent << arrived + QStringList{"verdict wrong-digest"};
    QTest::newRow("rejects-image") << rejected << sent << arrived + QStringList{"verdict rejected"};
    QTest::newRow("installation-fails")
        << rejected << completed << arrived + QStringList{"installing", "verdict rejected"};
    QTest::newRow("silent-installation") << noBox << completed << arrived + QStringList{"installing"};
}

void tst_usbupdate::otherAnswers()
{
    QFETCH(QString, box);
    QFETCH(QString, transfer);
    QFETCH(QStringList, journal);
    const QByteArray image = scenario::image(smallSize);
    const QString digest = QCryptographicHash::hash(image, QCryptographicHash::Md5).toHex();

    Program program(desktop);
    useRealBus(program);
    MUST(program.placeFile("SUPER_MEGA_UPDATE.sb", image)); // so that no server is asked
    PluggedUnits units;
    const QString fault = QString(",fault=") + QTest::currentDataTag();
    MUST(units.plugIn({scenario::unitOptions(program, "hb4", fault)}));
    MUST(program.start());
    MUST(scenario::connectUnit(program, "HB4 connected"));
    MUST(program.press("updateDeviceButton"));
    if (!box.isEmpty()) {
        MUST(program.waitForBox(errorBox(box)));
        MUST(program.answer("Ok"));
    }
    const QStringList soFar = QStringList{"opened", "request digest=" + digest} + journal;
    QTRY_COMPARE(scenario::journal(program), soFar);
    MUST(program.waitForText("labelTransfer", transfer));
    MUST(program.staysAway("another box", [](const View& view) { return view.boxCount() != 0; }));
    MUST(program.closeWindow());
    MUST(program.waitForExit(0));
    MUST(units.seeGivenBack());
}

void tst_usbupdate::unitThatTakesNothing()
{
    Program program(desktop);
    useRealBus(program);
    MUST(program.placeFile("SUPER_MEGA_UPDATE.sb", scenario::image(smallSize)));
    PluggedUnits units;
    MUST(units.plugIn({scenario::unitOptions(program, "hb4", ",fault=takes-nothing")}));
    MUST(units.fillUp());
    MUST(program.start());
    MUST(scenario::connectUnit(program, "HB4 connected"));
    MUST(program.press("updateDeviceButton"));
    MUST(program.waitForBox(errorBox(advice, "Error HID device")));
    MUST(program.answer("Ok"));
    MUST(program.closeWindow());
    MUST(program.waitForExit(0));
    MUST(units.seeGivenBack());
}

QTEST_GUILESS_MAIN(tst_usbupdate)

#include "tst_usbupdate.moc"
