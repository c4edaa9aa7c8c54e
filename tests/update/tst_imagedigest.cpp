#include "net/catalogue.h"
#include "tests/net/scene.h"
#include "tests/support/imagefiles.h"
#include "tests/support/rows.h"
#include "tests/support/texts.h"

#include <QtTest>

namespace {

const QByteArray image = QByteArray(40000, 'n') + '\0' + QByteArray(9, '\r');
const QByteArray previous(30000, 'p');
const ImageFiles before{previous, noFile, "older"};

const QString damaged = told::signal("youHaveProblem", {text::damagedImage, text::nothingChanged});
const QStringList differs{told::log("The image's SHA-256 differs from the catalogue's"), damaged};
const QStringList malformed{told::log("The catalogue's SHA-256 of the image is malformed"), damaged};

using catalogue::digestOf;

} // namespace

/// A catalogue that tells the image's SHA-256: no other image is stored.
class TestImageDigest : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void digest_data();
    void digest();
    void answer_data();
    void answer();
    void digestOfAnotherModel();
    void refusedImageLeavesNothingBehind();

private:
    void checkAndDownload(const QMap<QString, QString>& changes, const Answer& imageAnswer = ok(image));

    Scene scene;
};

void TestImageDigest::init()
{
    QVERIFY(before.placeAt(programImage()));
    scene.reset();
}

/// From the check to the image, as if the user said Yes.
void TestImageDigest::checkAndDownload(const QMap<QString, QString>& changes, const Answer& imageAnswer)
{
    scene.server.setAnswer(imagePath, imageAnswer);
    scene.checkAgainst(scene.catalogue(changes));
    QTRY_COMPARE(scene.journal->events, told::offer());
    scene.journal->events.clear();
    scene.checker->onNeedDownloadNewFirmware();
    QTRY_VERIFY(scene.rests(1));
}

void TestImageDigest::digest_data()
{
    const Rows<QString, QStringList> row("digest", "events");
    const QString good = digestOf(image);
    row("none", {}, told::imageStored());
    row("empty", "", told::imageStored());
    row("lower case", good, told::imageStored());
    row("upper case", good.toUpper(), told::imageStored());
    row("both cases", good.left(32).toUpper() + good.mid(32), told::imageStored());
    row("before a carriage return", good + '\r', told::imageStored());
    row("of another image", digestOf(previous), differs);
    row("of an empty image", digestOf(""), differs);
    row("another last digit", good.chopped(1) + (good.endsWith('0') ? '1' : '0'), differs);
    row("all zeros", QString(64, '0'), differs);
    row("a blank alone", " ", malformed);
    row("a blank behind it", good + ' ', malformed);
    row("a digit short", good.chopped(1), malformed);
    row("a digit of another script", good.left(30) + QChar(0xFF11) + good.mid(31), malformed);
}

void TestImageDigest::digest()
{
    QFETCH(QString, digest);
    QFETCH(QStringList, events);
    checkAndDownload({{"HB4Sha256", digest}});
    QCOMPARE(scene.journal->events, events);
    const bool stored = events == told::imageStored();
    QCOMPARE(ImageFiles::at(programImage()), stored ? (ImageFiles{image, noFile, previous}) : before);
}

void TestImageDigest::answer_data()
{
    const Rows<Answer, bool> row("answer", "isGood");
    row("whole", ok(image), true);
    row("in chunks", {{inChunks(image, 999)}}, true);
    row("cut short by a wrong length", {{announced(image.size() - 1, image)}}, false);
    row("cut short, without a length", {{unannounced(image.chopped(1))}}, false);
    row("with a byte more", ok(image + 'x'), false);
    row("with another byte", ok("N" + image.mid(1)), false);
    row("nothing in it", ok(""), false);
}

void TestImageDigest::answer()
{
    QFETCH(Answer, answer);
    QFETCH(bool, isGood);
    checkAndDownload({{"HB4Sha256", digestOf(image)}}, answer);
    QCOMPARE(scene.journal->events, isGood ? told::imageStored() : differs);
    QCOMPARE(ImageFiles::at(programImage()), isGood ? (ImageFiles{image, noFile, previous}) : before);
}

void TestImageDigest::digestOfAnotherModel()
{
    checkAndDownload({{"HB2Sha256", digestOf(previous)}, {"hb4Sha256", "x"}, {"HB4Sha256 ", "x"}});
    QCOMPARE(scene.journal->events, told::imageStored());
}

void TestImageDigest::refusedImageLeavesNothingBehind()
{
    checkAndDownload({{"HB4Sha256", digestOf(previous)}});
    QCOMPARE(scene.journal->events, differs);
    QVERIFY(!scene.checker->isBusy());
    scene.journal->events.clear();
    checkAndDownload({{"HB4Sha256", digestOf(image)}}); // and a later one is taken
    QCOMPARE(scene.journal->events, told::imageStored());
    QCOMPARE(ImageFiles::at(programImage()), (ImageFiles{image, noFile, previous}));
}

QTEST_GUILESS_MAIN(TestImageDigest)
#include "tst_imagedigest.moc"
