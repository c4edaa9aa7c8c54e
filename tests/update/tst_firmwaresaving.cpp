#include "tests/net/scene.h"
#include "tests/support/faultycalls.h"
#include "tests/support/filesizelimit.h"
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

const QByteArray none; ///< null: no such file
const QByteArray image(40000, 'n');
const QByteArray previous(30000, 'p');

const QString done = told::signal("newUpdateFileDownloaded", {"true"});
const QStringList notSaved{told::savingProblem(), told::log(text::savingProblem)};
const QStringList imageMissing{told::savingProblem(), told::log("Error not found update file"),
                               told::signal("checkversionError", {"Unknown error"})};

QString imageName()
{
    return QCoreApplication::applicationDirPath() + '/' + filename::image;
}

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
    void diskIsFullInMidFile();

private:
    Scene scene;
};

void TestFirmwareSaving::init()
{
    QVERIFY(ImageFiles{}.placeAt(imageName()));
    scene.reset();
    scene.server.setAnswer(imagePath, ok(image));
}

void TestFirmwareSaving::cannotBeSaved_data()
{
    // left: as the image
    const Rows<Trouble, bool, QStringList, QByteArray> row("trouble", "hadImage", "events", "left");
    const QStringList lost = notSaved + imageMissing + QStringList{done};
    const QStringList kept = notSaved + QStringList{done};
    const Trouble noDownload = [] { QVERIFY(QDir().mkpath(downloadOf(imageName()) + "/inside")); };
    const Trouble noBackup = [] { QVERIFY(QDir().mkpath(backupOf(imageName()) + "/inside")); };
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
    row("file cannot be created, first download", noDownload, false, lost, none);
    row("file cannot be created", noDownload, true, lost, none);
    row("disk is full, first download", full, false, lost, none);
    row("disk is full", full, true, lost, none);
    row("disk is broken", broken, true, lost, none);
    row("image cannot become the backup", noBackup, true, kept, previous);
    row("disk is full and image cannot become the backup", fullAndNoBackup, true, kept, previous);
    row("download cannot become the image", noRename(2), true, lost, none);
    row("download cannot become the image, first download", noRename(1), false, lost, none);
}

/// Told once for the save, once more for the missing image; the previous image is never offered as the new
/// one.
void TestFirmwareSaving::cannotBeSaved()
{
    QFETCH(Trouble, trouble);
    QFETCH(bool, hadImage);
    QFETCH(QStringList, events);
    QVERIFY((ImageFiles{hadImage ? previous : none, none, none}.placeAt(imageName())));
    trouble();
    scene.ask(Request::image);
    QTRY_VERIFY(scene.journal->events.contains(done));
    QCOMPARE(scene.journal->events, events);
    const ImageFiles files = ImageFiles::at(imageName());
    QTEST(files.image, "left");
    if (hadImage)
        QCOMPARE(files.image.isNull() ? files.backup : files.image, previous);
    QCOMPARE(scene.reply(), nullptr);
}

void TestFirmwareSaving::diskIsFullInMidFile()
{
    QVERIFY((ImageFiles{previous, none, none}.placeAt(imageName())));
    {
        const FileSizeLimit limit(20000);
        scene.ask(Request::image);
        QTRY_VERIFY(scene.journal->events.contains(done));
    }
    QCOMPARE(scene.journal->events, notSaved + imageMissing + QStringList{done});
    QCOMPARE(ImageFiles::at(imageName()), (ImageFiles{none, none, previous}));
}

QTEST_GUILESS_MAIN(TestFirmwareSaving)
#include "tst_firmwaresaving.moc"
