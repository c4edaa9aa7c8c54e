#include "tests/net/scene.h"
#include "tests/support/faultycalls.h"
#include "tests/support/imagefiles.h"
#include "tests/support/rows.h"
#include "tests/support/texts.h"

#include <QDir>
#include <QtTest>

#include <cerrno>
#include <functional>

namespace {

using faultycalls::Call;
using Trouble = std::function<void()>; ///< what makes the disk refuse

const QByteArray image(40000, 'n');
const QByteArray previous(30000, 'p');

const QStringList notSaved{told::savingProblem(), told::log(text::savingProblem)};
const QStringList imageMissing{told::savingProblem(), told::log("Error not found update file"),
                               told::signal("checkversionError", {"Unknown error"})};

} // namespace
Q_DECLARE_METATYPE(Trouble)

/// A downloaded image that the disk does not take.
class TestFirmwareSaving : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup() { faultycalls::clear(); }
    void cannotBeSaved_data();
    void cannotBeSaved();

private:
    Scene scene;
};

void TestFirmwareSaving::init()
{
    QVERIFY(ImageFiles{}.placeAt(programImage()));
    scene.reset();
    scene.server.setAnswer(imagePath, ok(image));
}

void TestFirmwareSaving::cannotBeSaved_data()
{
    // left: as the image; a folder in the download's place counts as no file
    const Rows<Trouble, bool, QStringList, QByteArray, QByteArray> row("trouble", "hadImage", "events",
                                                                       "left", "download");
    const QStringList lost = notSaved + imageMissing + told::imageStored();
    const QStringList kept = notSaved + told::imageStored();
    const Trouble noDownload = [] { QVERIFY(QDir().mkpath(downloadOf(programImage()) + "/inside")); };
    const Trouble noBackup = [] { QVERIFY(QDir().mkpath(backupOf(programImage()) + "/inside")); };
    const Trouble full = [] { faultycalls::fail(Call::write, 1, ENOSPC); };
    const Trouble broken = [] { faultycalls::fail(Call::fsync, 1, EIO); };
    const auto noRename = [](int nth) {
        return [nth] {
            faultycalls::fail(Call::rename, nth, EIO);
            faultycalls::fail(Call::write, 2, EIO); // the toolkit copies what it cannot rename
        };
    };
    const Trouble fullAndNoBackup = [=] {
        full();
        noBackup();
    };
    row("file cannot be created, first download", noDownload, false, lost, noFile, noFile);
    row("file cannot be created", noDownload, true, lost, noFile, noFile);
    row("disk is full, first download", full, false, lost, noFile, noFile);
    row("disk is full", full, true, lost, noFile, noFile);
    row("disk is broken", broken, true, lost, noFile, noFile);
    row("image cannot become the backup", noBackup, true, kept, previous, image);
    row("disk is full and image cannot become the backup", fullAndNoBackup, true, kept, previous, noFile);
    row("download cannot become the image", noRename(2), true, lost, noFile, image);
    row("download cannot become the image, first download", noRename(1), false, lost, noFile, image);
}

/// Told once for the save, once more for the missing image; the previous image is never offered as the new
/// one.
void TestFirmwareSaving::cannotBeSaved()
{
    QFETCH(Trouble, trouble);
    QFETCH(bool, hadImage);
    QFETCH(QStringList, events);
    QVERIFY((ImageFiles{hadImage ? previous : noFile, noFile, noFile}.placeAt(programImage())));
    trouble();
    scene.ask(Request::image);
    QTRY_COMPARE(scene.journal->events, events);
    const ImageFiles files = ImageFiles::at(programImage());
    QTEST(files.image, "left");
    QTEST(files.download, "download");
    if (hadImage)
        QCOMPARE(files.image.isNull() ? files.backup : files.image, previous);
    QCOMPARE(scene.reply(), nullptr);
}

QTEST_GUILESS_MAIN(TestFirmwareSaving)
#include "tst_firmwaresaving.moc"
