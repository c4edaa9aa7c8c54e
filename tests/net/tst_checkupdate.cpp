#include "tests/net/scene.h"
#include "tests/support/models.h"
#include "tests/support/rows.h"

#include <QtTest>

namespace {

/// The language of the tests' surroundings, as the system names it.
#ifdef Q_OS_WIN
const QByteArray language = "Accept-Language: en-US,*";
#else
const QByteArray language = "Accept-Language: en,*";
#endif

using Changes = QMap<QString, QString>;

} // namespace
Q_DECLARE_METATYPE(Changes)

/// From the press of Connect to the offer: the catalogue's request, its answer, and what follows from it.
class TestCheckUpdate : public QObject
{
    Q_OBJECT

private slots:
    void init() { scene.reset(); }
    void requestBytes_data();
    void requestBytes();
    void outcome_data();
    void outcome();
    void takesOverWhatItFinds();
    void incompleteCatalogueIsTakenOver();
    void lineEndsDoNotMatter();
    void model_data();
    void model();
    void unknownModelReadsHb2_data();
    void unknownModelReadsHb2();
    void versionByteIsNotCompared();
    void size_data();
    void size();
    void goodAnswerReleasesTheReply();
    void updaterOfferLeavesTheCatalogue();

private:
    Scene scene;
};

void TestCheckUpdate::requestBytes_data()
{
    const Rows<Request, QByteArray, QByteArray> row("request", "requestLine", "host");
    const QByteArray own = "127.0.0.1:" + QByteArray::number(scene.server.port());
    row("catalogue, through the system's proxy", Request::catalogue,
        "GET http://updates.talvex.example/wp-content/uploads/versions.txt HTTP/1.1",
        "updates.talvex.example");
    row("change log", Request::changeLog, "GET /logs/HB4.txt HTTP/1.1", own);
    row("updater's change log", Request::mainChangeLog, "GET /logs/updater.txt HTTP/1.1", own);
    row("image", Request::image, "GET /bin/HB4.sb HTTP/1.1", own);
}

/// Of the five headers, four are the toolkit's own; whatever else were added shows.
void TestCheckUpdate::requestBytes()
{
    QFETCH(Request, request);
    QFETCH(QByteArray, requestLine);
    QFETCH(QByteArray, host);
    scene.ask(request);
    QTRY_COMPARE(scene.server.requests().size(), 1);
    const QByteArray expected =
        httpHead({requestLine, "Host: " + host, "User-Agent: MyOwnBrowser 1.0", "Connection: Keep-Alive",
                  "Accept-Encoding: gzip, deflate", language});
    QCOMPARE(scene.server.requests().first(), expected);
}

void TestCheckUpdate::outcome_data()
{
    const Rows<Changes, QString, QStringList, QStringList> row("changes", "version", "events",
                                                               "furtherPaths");
    row("newer firmware", {}, "23", told::offer(), {changeLogPath});
    row("same firmware", {}, "27", told::upToDate(), {});
    row("newer updater", {{"MainVer", updater::next}}, "30", told::updaterOffer(), {mainChangeLogPath});
    row("newer updater and newer firmware", {{"MainVer", updater::next}}, "23", told::updaterOffer(),
        {mainChangeLogPath});
    row("no firmware version", {{"HB4Ver", {}}}, "23", told::incomplete(), {});
    row("no image address", {{"HB4Bin", {}}}, "23", told::incomplete(), {});
    row("no change log address", {{"HB4ChangeLog", {}}}, "30", told::incomplete(), {});
    row("no updater version", {{"MainVer", {}}}, "30", told::incomplete(), {});
    row("no updater address", {{"MacMainBin", {}}}, "30", told::incomplete(), {});
    row("no change log of the updater, not needed", {{"MainChangeLog", {}}}, "30", told::upToDate(), {});
    row("no change log of the newer updater", {{"MainChangeLog", {}}, {"MainVer", updater::next}}, "30",
        told::downloadError(), {});
    row("change log address without a path", {{"HB4ChangeLog", "http://host"}}, "23", told::downloadError(),
        {});
}

void TestCheckUpdate::outcome()
{
    QFETCH(Changes, changes);
    QFETCH(QString, version);
    QFETCH(QStringList, events);
    QFETCH(QStringList, furtherPaths);
    scene.checker->setCurVersion(version);
    scene.checkAgainst(scene.catalogue(changes));
    QTRY_VERIFY(scene.rests(events.size()));
    QCOMPARE(scene.journal->events, events);
    QCOMPARE(scene.server.paths(), QStringList{cataloguePath} + furtherPaths);
}

void TestCheckUpdate::takesOverWhatItFinds()
{
    scene.checker->setCurVersion(QString("27"));
    scene.checkAgainst(scene.catalogue());
    QTRY_COMPARE(scene.journal->events, told::upToDate());
    QCOMPARE(scene.state().newVersion, QString("27"));
    QCOMPARE(scene.state().binUrl, scene.server.address(imagePath));
    QCOMPARE(scene.state().changeLogUrl, scene.server.address(changeLogPath));
    QCOMPARE(scene.state().mainVersion, QString(updater::own));
    QCOMPARE(scene.state().mainChangeLogUrl, scene.server.address(mainChangeLogPath));
    QCOMPARE(scene.state().mainBinUrl, QString("http://update-server/bin/updater.zip"));
}

void TestCheckUpdate::incompleteCatalogueIsTakenOver()
{
    const QByteArray text = scene.catalogue({{"MacMainBin", {}}});
    scene.checkAgainst(text);
    QTRY_COMPARE(scene.journal->events, told::incomplete());
    QVERIFY2(scene.state().mainBinUrl.isEmpty(), "the placeholder goes too");
    QCOMPARE(scene.state().newVersion, QString("27"));
    QVERIFY(scene.state().reply != nullptr);
    QCOMPARE(scene.state().infoData, text);
    QVERIFY(!scene.clock().isActive());
}

void TestCheckUpdate::lineEndsDoNotMatter()
{
    QByteArray text = scene.catalogue();
    text.replace("\n", "\r\n");
    scene.checkAgainst(text);
    QTRY_COMPARE(scene.journal->events, told::offer());
    QCOMPARE(scene.state().mainVersion, QString(updater::own));
}

void TestCheckUpdate::model_data()
{
    const Rows<UnitType, QString> row("type", "version");
    for (const models::Model& model : models::all)
        row(model.option, model.type, QString(model.stem) + "'s own");
}

/// Every model finds its own entries in one catalogue that holds all of them.
void TestCheckUpdate::model()
{
    QFETCH(UnitType, type);
    Changes all;
    for (const models::Model& model : models::all) {
        const QString stem = model.stem;
        all.insert(stem + "Ver", stem + "'s own");
        all.insert(stem + "Bin", "http://host/" + stem);
        all.insert(stem + "ChangeLog", "http://host/" + stem);
    }
    scene.checker->setUnitType(type);
    scene.checkAgainst(scene.catalogue(all));
    QTRY_COMPARE(scene.journal->events, told::upToDate()); // these versions begin with no number
    QTEST(scene.state().newVersion, "version");
}

void TestCheckUpdate::unknownModelReadsHb2_data()
{
    QTest::addColumn<int>("type");
    QTest::newRow("first behind the last") << models::count;
    QTest::newRow("negative") << -1;
    QTest::newRow("large") << 1000;
}

void TestCheckUpdate::unknownModelReadsHb2()
{
    QFETCH(int, type);
    const QByteArray text =
        scene.catalogue({{"HB2Ver", "5"}, {"HB2Bin", "http://h/b"}, {"HB2ChangeLog", "http://h/l"}});
    scene.checker->setUnitType(static_cast<UnitType>(type));
    scene.checkAgainst(text);
    const QStringList unknown{told::log(QString("Can't recog unitType %1").arg(type))};
    QTRY_COMPARE(scene.journal->events, unknown + told::upToDate());
    QCOMPARE(scene.state().newVersion, QString("5"));
}

void TestCheckUpdate::versionByteIsNotCompared()
{
    scene.checker->setCurVersion(static_cast<unsigned char>(99));
    scene.checkAgainst(scene.catalogue());
    QTRY_COMPARE(scene.journal->events, told::offer());
}

void TestCheckUpdate::size_data()
{
    const Rows<int, int, QStringList> row("bytes", "carriageReturns", "events");
    row("10245 bytes", 10245, 0, told::upToDate());
    row("10246 bytes", 10246, 0, told::exitSlot() + told::upToDate());
    row("10245 bytes without carriage returns", 10245, 50, told::upToDate());
    row("much more", 1000000, 0, told::exitSlot() + told::upToDate());
}

void TestCheckUpdate::size()
{
    QFETCH(int, bytes);
    QFETCH(int, carriageReturns);
    QFETCH(QStringList, events);
    const QByteArray text = scene.catalogue().leftJustified(bytes, ' ') + QByteArray(carriageReturns, '\r');
    scene.checker->setCurVersion(QString("27"));
    scene.checkAgainst(text);
    QTRY_VERIFY(scene.rests(events.size()));
    QCOMPARE(scene.journal->events, events);
}

void TestCheckUpdate::goodAnswerReleasesTheReply()
{
    scene.checkAgainst(scene.catalogue({{"HB4Ver", "23"}}));
    const QPointer<QNetworkReply> reply = scene.state().reply;
    QTRY_COMPARE(scene.journal->events, told::upToDate());
    QCOMPARE(scene.state().reply, nullptr);
    QCOMPARE(scene.state().infoData, QByteArray());
    QVERIFY(!scene.clock().isActive());
    QTRY_VERIFY(reply.isNull());
}

void TestCheckUpdate::updaterOfferLeavesTheCatalogue()
{
    const QByteArray text = scene.catalogue({{"MainVer", updater::next}});
    scene.server.setAnswer(cataloguePath, ok(text));
    scene.server.setAnswer(mainChangeLogPath, silence());
    scene.checker->checkUpdate();
    QTRY_COMPARE(scene.server.requests().size(), 2);
    QCOMPARE(scene.state().infoData, text); // the change log's completion clears it
}

QTEST_GUILESS_MAIN(TestCheckUpdate)
#include "tst_checkupdate.moc"
