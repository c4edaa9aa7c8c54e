#include "net/catalogue.h"
#include "net/updatechecker.h"
#include "tests/support/boxlines.h"
#include "tests/support/inside.h"
#include "tests/support/rows.h"
#include "tests/support/signer.h"
#include "tests/support/testkey.h"
#include "tests/support/texts.h"
#include "tests/support/transferdesk.h"

#include <QFile>
#include <QtTest>

namespace {

const QByteArray image = imageOf(200);

using catalogue::digestOf;

} // namespace

/// Update Device in a program with a key: what lies on the disk goes to the unit only if this run has
/// downloaded it.
class TestSignedImage : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { testkey::set(Signer().publicKey()); }
    void press_data();
    void press();
    void serviceFileIsSentAsItIs();
};

void TestSignedImage::press_data()
{
    const Rows<QString, QByteArray, bool> row("downloaded", "onDisk", "isSent");
    row("the image downloaded", digestOf(image), image, true);
    row("its digest in capital letters", digestOf(image).toUpper(), image, true);
    row("another image", digestOf(image), imageOf(201), false);
    row("one bit of it is another", digestOf(image), withBitFlipped(image, 1000), false);
    row("nothing was downloaded", "", image, false);
    row("empty image", digestOf(""), "", false);
}

void TestSignedImage::press()
{
    QFETCH(QString, downloaded);
    QFETCH(QByteArray, onDisk);
    QFETCH(bool, isSent);
    TransferDesk desk(UNIT_HB4);
    inside::of(desk.window.checker()).downloadedImage = downloaded;
    placeFile(filename::image, onDisk);
    if (!isSent && !onDisk.isEmpty())
        QTest::ignoreMessage(QtWarningMsg, "The image on the disk is not the one that was downloaded");
    desk.window->updateDevice();
    QCOMPARE(desk.window.boxes.lines(), isSent ? QStringList{} : QStringList{boxline::noFile});
    desk.tick(3);
    QCOMPARE(desk.writes().size(), std::size_t{isSent ? 1U : 0U}); // the request
}

void TestSignedImage::serviceFileIsSentAsItIs()
{
    TransferDesk desk(UNIT_HB4);
    placeServiceFile(image);
    desk.window.checker().checkUpdate();
    desk.window->updateDevice();
    QCOMPARE(desk.window.boxes.lines(), QStringList{});
    desk.tick(3);
    QCOMPARE(desk.writes().size(), std::size_t{1});
}

QTEST_MAIN(TestSignedImage)
#include "tst_signedimage.moc"
