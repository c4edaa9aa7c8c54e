// The whole road of an update, from Connect to "Update: finished".

#include "tests/program/programtest.h"
#include "tests/program/scenario.h"
#include "tests/support/texts.h"

#include <QtTest>

namespace {

/// Nothing, one packet more or less, and a hundred whole ones.
constexpr std::array sizes{1, 59, 60, 61, 120, 6000};

} // namespace

class tst_road : public ServedProgramTest
{
    Q_OBJECT

private slots:
    void everyModel_data();
    void everyModel();
    void secondRunKeepsTheFirstImage();
    void largeImage();

private:
    void expectRequests(const QString& stem);
};

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

void tst_road::everyModel_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<int>("size");
    for (const models::Connection& connection : models::connections())
        for (const int size : sizes)
            QTest::addRow("%s, %d bytes", connection.name.constData(), size) << connection.name << size;
}

void tst_road::everyModel()
{
    QFETCH(QByteArray, name);
    QFETCH(int, size);
    const models::Connection connection = models::connectionOf(name);
    const QByteArray image = imageOf(size);
    server.forgetRequests();

    Program program(desktop);
    MUST(scenario::offer(program, server, connection, image));
    program.plugIn(scenario::options(program, connection));
    MUST(program.start());
    MUST(scenario::connectAndDownload(program, connection.message()));
    QVERIFY(!program.look().enabled("connect_button"));
    QCOMPARE(program.look().text("labelTransfer"), QString(text::transferDownload));
    MUST(program.press("updateDeviceButton"));
    MUST(scenario::seeFinished(program));

    for (const models::Model& unit : connection.units) {
        QCOMPARE(scenario::receivedImage(program, unit.option), image);
        QCOMPARE(scenario::journal(program, unit.option), scenario::faultlessJournal(image));
    }
    QCOMPARE(program.errorOutput(), QString());
    expectRequests(connection.stem());
}

void tst_road::secondRunKeepsTheFirstImage()
{
    const QByteArray first = imageOf(61);
    const QByteArray second = imageOf(120);
    MUST(scenario::publish(server, second));

    Program program(desktop);
    MUST(program.placeFile(filename::image, first));
    MUST(program.placeFile(filename::backup, "the image before that"));
    MUST(scenario::startWithUnit(program, server.proxy()));
    MUST(scenario::connectAndDownload(program));
    QCOMPARE(program.fileContent(filename::image), second);
    QCOMPARE(program.fileContent(filename::backup), first);
    QVERIFY(!QFile::exists(program.ownPath(filename::download)));
    MUST(scenario::leave(program));
}

void tst_road::largeImage()
{
    // 100000 packets, not quite one a millisecond: the bar is on its way for so long that nobody misses it.
    const QByteArray image = imageOf(scenario::longOnItsWay);
    MUST(scenario::publish(server, image));

    Program program(desktop);
    MUST(scenario::startWithUnit(program, server.proxy()));
    MUST(scenario::pressUpdate(program));
    MUST(program.waitForText("labelTransfer", text::transferInProgress));
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
