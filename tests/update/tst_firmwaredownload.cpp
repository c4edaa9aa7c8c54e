#include "tests/net/scene.h"
#include "tests/support/imagefiles.h"
#include "tests/support/rows.h"
#include "tests/support/texts.h"

#include <QtTest>

namespace {

const QByteArray image = QByteArray(40000, 'n') + '\0' + QByteArray(9, '\r');
const QByteArray previous(30000, 'p');

} // namespace

/// From the user's Yes to the image on disk.
class TestFirmwareDownload : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void firstAndSecondDownload();
    void leavesNothingInMemory();
    void answer_data();
    void answer();
    void noImage_data();
    void noImage();
    void networkErrorWritesNothing();
    void nextDownloadBeginsAfresh();
    void addressIsCutInPlace();
    void progress();
    void announcedSizeIsReported();

private:
    void download();

    Scene scene;
};

void TestFirmwareDownload::init()
{
    QVERIFY(ImageFiles{}.placeAt(programImage()));
    scene.reset();
    scene.server.setAnswer(imagePath, ok(image));
}

void TestFirmwareDownload::download()
{
    scene.journal->events.clear();
    scene.ask(Request::image);
    QTRY_VERIFY(scene.rests(1));
}

void TestFirmwareDownload::firstAndSecondDownload()
{
    download();
    QCOMPARE(scene.journal->events, told::imageStored());
    QCOMPARE(ImageFiles::at(programImage()), (ImageFiles{image, noFile, noFile}));

    const QByteArray second(100, '2');
    scene.server.setAnswer(imagePath, ok(second));
    download();
    QCOMPARE(scene.journal->events, told::imageStored());
    QCOMPARE(ImageFiles::at(programImage()), (ImageFiles{second, noFile, image}));
}

void TestFirmwareDownload::leavesNothingInMemory()
{
    scene.leaveStaleCatalogue();
    scene.ask(Request::image);
    const QPointer<QNetworkReply> reply = scene.reply();
    QTRY_COMPARE(scene.journal->events, told::imageStored());
    QCOMPARE(scene.reply(), nullptr);
    QVERIFY(!scene.clock().isActive());
    QTRY_VERIFY(reply.isNull());
    QVERIFY(!scene.hasStaleCatalogue());
}

void TestFirmwareDownload::answer_data()
{
    const Rows<Answer, QByteArray> row("answer", "stored");
    const QByteArray small("\0firm\r\nware\n", 12);
    row("whole", ok(image), image);
    row("drop by drop", {drops(httpAnswer("200 OK", small)), End::keepOpen}, small);
    row("chunked", {{inChunks(image, 999)}, End::keepOpen}, image);
    row("no length, then closed", {{unannounced(image)}}, image);
    row("more than announced", {{httpAnswer("200 OK", image) + "and more"}}, image);
    row("as an image of some kind", ok(image, {"Content-Type: application/octet-stream"}), image);
    row("as plain text", ok(image, {"Content-Type: text/plain"}), image);
    row("an encoding that is none", ok(image, {"Content-Encoding: identity"}), image);
    row("none, in capital letters", ok(image, {"CONTENT-ENCODING: Identity"}), image);
    row("none, between blanks", ok(image, {"Content-Encoding: \t identity \t "}), image);
    row("nothing in it", ok(""), "");
}

void TestFirmwareDownload::answer()
{
    QFETCH(Answer, answer);
    QFETCH(QByteArray, stored);
    scene.server.setAnswer(imagePath, answer);
    download();
    QCOMPARE(scene.journal->events, told::imageStored());
    QCOMPARE(ImageFiles::at(programImage()), (ImageFiles{stored, noFile, noFile}));
}

void TestFirmwareDownload::noImage_data()
{
    QTest::addColumn<Answer>("answer");
    const QByteArray packed = gzip(image);
    const QByteArray page = "<html>Please log in</html>";
    QTest::newRow("compressed") << ok(packed, {"Content-Encoding: gzip"});
    QTest::newRow("compressed, cut short")
        << Answer{{httpHead({"HTTP/1.1 200 OK", "Content-Encoding: gzip", "Connection: close"}) +
                   packed.left(packed.size() / 2)}};
    QTest::newRow("compressed behind none") << ok(packed, {"Content-Encoding: identity, gzip"});
    QTest::newRow("an encoding without a name") << ok(image, {"Content-Encoding: "});
    QTest::newRow("none, cut short") << Answer{
        {"HTTP/1.1 200 OK\r\nContent-Encoding: identity\r\nContent-Length: 99\r\n\r\nhalf"}};
    QTest::newRow("a page of a captive portal") << ok(page, {"Content-Type: text/html"});
    QTest::newRow("a page, with its character set") << ok(page, {"Content-Type: text/html; charset=utf-8"});
    QTest::newRow("a page, in capital letters") << ok(page, {"CONTENT-TYPE: Text/HTML"});
    QTest::newRow("cut short") << Answer{{announced(99, page)}};
}

void TestFirmwareDownload::noImage()
{
    QFETCH(Answer, answer);
    const ImageFiles before{previous, noFile, "older"};
    QVERIFY(before.placeAt(programImage()));
    scene.server.setAnswer(imagePath, answer);
    download();
    QCOMPARE(scene.journal->events, scene.networkError(Request::image));
    QCOMPARE(ImageFiles::at(programImage()), before);
}

void TestFirmwareDownload::networkErrorWritesNothing()
{
    scene.leaveStaleCatalogue();
    scene.server.setAnswer(imagePath, {{announced(9, "half")}});
    download();
    QCOMPARE(scene.journal->events, scene.networkError(Request::image));
    QCOMPARE(ImageFiles::at(programImage()), ImageFiles{});
    QVERIFY(!scene.clock().isActive());
    QVERIFY(scene.hasStaleCatalogue()); // unlike after a whole image
}

void TestFirmwareDownload::nextDownloadBeginsAfresh()
{
    scene.server.setAnswer(imagePath, {{announced(9, "half")}});
    download();
    QCOMPARE(scene.journal->events, scene.networkError(Request::image));
    scene.server.setAnswer(imagePath, ok(image));
    download();
    QCOMPARE(scene.journal->events, told::imageStored());
    QCOMPARE(ImageFiles::at(programImage()), (ImageFiles{image, noFile, noFile}));
}

void TestFirmwareDownload::addressIsCutInPlace()
{
    scene.ask(Request::image, scene.server.address(imagePath).replace("http:", "https:"));
    QCOMPARE(scene.clock().interval(), 30000);
    QTRY_COMPARE(scene.journal->events, told::imageStored()); // by plain HTTP
    scene.checker->onNeedDownloadNewFirmware();
    QCOMPARE(scene.journal->events.last(), told::problem()); // only the path is left of the address
    QCOMPARE(scene.server.requests().size(), 1);
}

void TestFirmwareDownload::progress()
{
    constexpr int size = 4000;
    const QByteArray bytes = httpAnswer("200 OK", QByteArray(size, 'x'));
    scene.server.setAnswer(imagePath, {drops(bytes), End::keepOpen, true});
    scene.ask(Request::image);
    const auto isTold = [this] { // a byte each time; the toolkit tells of progress ten times a second
        scene.server.goOn();
        return !scene.journal->progress.isEmpty();
    };
    QTRY_VERIFY(isTold());
    const int percent = scene.journal->progress.first();
    const int arrived = static_cast<int>(scene.received());
    QVERIFY2(percent < 100 && percent <= arrived * 100 / size, qPrintable(QString::number(percent)));
    for (int i = 0; i < bytes.size(); ++i)
        scene.server.goOn();
    QTRY_COMPARE(scene.journal->events, told::imageStored());
    QCOMPARE(scene.journal->progress.last(), 100);
}

/// Reported with each piece, and stored all the same.
void TestFirmwareDownload::announcedSizeIsReported()
{
    const QByteArray large(15000001, 'x');
    scene.server.setAnswer(imagePath, ok(large));
    scene.ask(Request::image);
    QTRY_VERIFY(scene.journal->events.endsWith(told::imageStored().first()));
    QCOMPARE(scene.journal->events.mid(0, 3), told::downloadError());
    QCOMPARE(scene.journal->events.count(told::problem()), scene.journal->progress.size());
    QVERIFY(ImageFiles::at(programImage()).image == large);
}

QTEST_GUILESS_MAIN(TestFirmwareDownload)
#include "tst_firmwaredownload.moc"
