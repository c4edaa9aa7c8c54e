// The whole road of an update, from Connect to "Update: finished".

#include "tests/harness/program.h"
#include "tests/harness/updateserver.h"
#include "tests/program/scenario.h"

#include <QtTest>

namespace {

struct Model
{
    const char* option;  ///< as the virtual unit is told
    const char* stem;    ///< its keys in the catalogue
    const char* message; ///< shown on connection
};

constexpr std::array models{
    Model{"hb4", "HB4", "HB4 connected"},           Model{"hb2", "HB2", "HB2 connected"},
    Model{"hbx", "HBX", "HBX connected"},           Model{"zeq-pro", "ZEQPRO", "ZEQ PRO connected"},
    Model{"zeq-io", "ZEQPRO", "ZEQ IO connected"},  Model{"panel2v", "PANEL", "PANEL2V connected"},
    Model{"panel4v", "PANEL", "PANEL4V connected"}, Model{"dsk10", "DSK10", "DSK10/DSK9 connected"},
    Model{"dsk6", "DSK10", "DSK6/DSK5 connected"},  Model{"lmb1", "LMB1", "LMB-1 connected"},
    Model{"lmb2", "LMB2", "LMB-2 connected"},       Model{"plt70", "PLT70", "PLT70 connected"},
    Model{"plt65", "PLT70", "PLT65 connected"},
};

constexpr std::array pairs{
    Model{"trk300", "PLT70", "TRK300 connected"},
    Model{"trk900", "PLT70", "TRK900 connected"},
};

/// Nothing, one packet more or less, and a hundred whole ones.
constexpr std::array sizes{1, 59, 60, 61, 120, 6000};

template<std::size_t count> void addRows(const std::array<Model, count>& list)
{
    QTest::addColumn<QString>("option");
    QTest::addColumn<QString>("stem");
    QTest::addColumn<QString>("message");
    QTest::addColumn<int>("size");
    for (const Model& model : list) {
        for (const int size : sizes)
            QTest::addRow("%s, %d bytes", model.option, size)
                << model.option << model.stem << model.message << size;
    }
}

} // namespace

class tst_road : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();

    void everyModel_data() { addRows(models); }
    void everyModel();
    void everyPair_data() { addRows(pairs); }
    void everyPair();
    void secondRunKeepsTheFirstImage();
    void largeImage();

private:
    void expectRequests(const QString& stem);

    Desktop desktop;
    UpdateServer server;
};

void tst_road::initTestCase()
{
    MUST(desktop.start());
    MUST(server.start());
}

void tst_road::expectRequests(const QString& stem)
{
    const QString host = QString("GET http://") + updateHost;
    const QStringList expected{host + cataloguePath + " HTTP/1.1", host + "/logs/" + stem + ".txt HTTP/1.1",
                               host + "/bin/" + stem + ".sb HTTP/1.1"};
    QStringList asked;
    const QVector<UpdateServer::Request> requests = server.requests();
    for (const UpdateServer::Request& request : requests) {
        asked += request.line;
        QCOMPARE(request.userAgent, QString(expectedUserAgent));
        QCOMPARE(request.status, 200);
    }
    QCOMPARE(asked, expected);
}

void tst_road::everyModel()
{
    QFETCH(QString, option);
    QFETCH(QString, stem);
    QFETCH(QString, message);
    QFETCH(int, size);
    const QByteArray image = scenario::image(size);
    MUST(publishFirmware(server, stem, scenario::offeredVersion, image, scenario::changeLog));
    server.forgetRequests();

    Program program(desktop);
    program.setVariable("http_proxy", server.proxy());
    program.plugIn({scenario::unitOptions(program, option)});
    MUST(program.start());
    MUST(scenario::connectAndDownload(program, message));
    QVERIFY(!program.look().enabled("connect_button"));
    QCOMPARE(program.look().text("labelTransfer"), QString("Transfer: download new version"));
    MUST(program.press("updateDeviceButton"));
    MUST(scenario::seeFinished(program));

    QCOMPARE(scenario::receivedImage(program), image);
    QCOMPARE(scenario::journal(program), scenario::faultlessJournal(image));
    QCOMPARE(program.errorOutput(), QString());
    expectRequests(stem);
}

void tst_road::everyPair()
{
    QFETCH(QString, option);
    QFETCH(QString, stem);
    QFETCH(QString, message);
    QFETCH(int, size);
    const QByteArray image = scenario::image(size);
    MUST(publishFirmware(server, stem, scenario::offeredVersion, image, scenario::changeLog));
    server.forgetRequests();

    Program program(desktop);
    program.setVariable("http_proxy", server.proxy());
    program.plugIn({scenario::unitOptions(program, option + "-left", {}, "left"),
                    scenario::unitOptions(program, option + "-right", {}, "right")});
    MUST(program.start());
    MUST(scenario::connectAndDownload(program, message));
    MUST(program.press("updateDeviceButton"));
    MUST(scenario::seeFinished(program));

    for (const QString deck : {"left", "right"}) {
        QCOMPARE(scenario::receivedImage(program, deck), image);
        QCOMPARE(scenario::journal(program, deck), scenario::faultlessJournal(image));
    }
    QCOMPARE(program.errorOutput(), QString());
    expectRequests(stem);
}

void tst_road::secondRunKeepsTheFirstImage()
{
    const QByteArray first = scenario::image(61);
    const QByteArray second = scenario::image(120);
    MUST(publishFirmware(server, "HB4", scenario::offeredVersion, second, scenario::changeLog));

    Program program(desktop);
    program.setVariable("http_proxy", server.proxy());
    program.plugIn({scenario::unitOptions(program, "hb4")});
    MUST(program.placeFile("updater.sb", first));
    MUST(program.placeFile("updater.sb.bkp", "the image before that"));
    MUST(program.start());
    MUST(scenario::connectAndDownload(program, "HB4 connected"));
    QCOMPARE(program.fileContent("updater.sb"), second);
    QCOMPARE(program.fileContent("updater.sb.bkp"), first);
    QVERIFY(!QFile::exists(program.ownPath("updater.sb.upd")));
    MUST(program.closeWindow());
    MUST(program.waitForExit(0));
}

void tst_road::largeImage()
{
    // 100000 packets, not quite one a millisecond: the bar is on its way for so long that nobody misses it.
    const QByteArray image = scenario::image(6'000'000);
    MUST(publishFirmware(server, "HB4", scenario::offeredVersion, image, scenario::changeLog));

    Program program(desktop);
    program.setVariable("http_proxy", server.proxy());
    program.plugIn({scenario::unitOptions(program, "hb4")});
    MUST(program.start());
    MUST(scenario::connectAndDownload(program, "HB4 connected"));
    MUST(program.press("updateDeviceButton"));
    MUST(program.waitForText("labelTransfer", "Transfer: in progress"));
    const auto underWay = [](const View& view) {
        const int percent = view.value("progressBarTransfer");
        return percent > 2 && percent < 100 && view.enabled("progressBarTransfer") &&
               view.enabled("labelTransfer");
    };
    MUST(program.waitFor("the bar on its way", underWay));
    MUST(scenario::seeFinished(program));
    QVERIFY(scenario::receivedImage(program) == image);
    QCOMPARE(scenario::journal(program), scenario::faultlessJournal(image));
}

QTEST_GUILESS_MAIN(tst_road)

#include "tst_road.moc"
