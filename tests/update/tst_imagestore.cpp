#include "tests/support/faultycalls.h"
#include "tests/support/filesizelimit.h"
#include "tests/support/imagefiles.h"
#include "tests/support/rows.h"
#include "tests/support/texts.h"
#include "update/imagestore.h"

#include <QDir>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QtTest>

#include <cerrno>
#include <csignal>
#include <memory>

#include <sys/wait.h>
#include <unistd.h>

using faultycalls::Call;

namespace {

const QByteArray older(70000, 'o');
const QByteArray previous(50000, 'p');
const QByteArray fresh = QByteArray(60000, 'f') + '\0' + QByteArray(1234, 'g');

} // namespace
Q_DECLARE_METATYPE(Call)
Q_DECLARE_METATYPE(ImageFiles)

class TestImageStore : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup() { faultycalls::clear(); }
    void stores_data();
    void stores();
    void storesAnySize_data();
    void storesAnySize();
    void bytesReachTheDiskBeforeTheyBecomeTheImage();
    void linkIsNotFollowed();
    void diskRefuses_data();
    void diskRefuses();
    void diskIsFullInMidFile();
    void nameTakenByAFolder();
    void folderIsGone();
    void onlyImageSurvivesAFailure_data();
    void onlyImageSurvivesAFailure();
    void imageCannotBecomeTheBackup();
    void downloadCannotBecomeTheImage();
    void replacingWithoutADownload();
    void replacingWithADownloadOfBefore();
    void killedAtAnyCall_data();
    void killedAtAnyCall();

private:
    void place(const ImageFiles& files) const { QVERIFY(files.placeAt(name)); }
    [[nodiscard]] ImageFiles found() const { return ImageFiles::at(name); }
    [[nodiscard]] bool isKilledAtCall(int nthCall);

    std::unique_ptr<QTemporaryDir> folder;
    QString name;
};

void TestImageStore::init()
{
    folder = std::make_unique<QTemporaryDir>();
    name = folder->filePath(filename::image);
}

void TestImageStore::stores_data()
{
    const Rows<ImageFiles, ImageFiles> row("before", "after");
    row("first download", {}, {fresh, noFile, noFile});
    row("second download", {previous, noFile, noFile}, {fresh, noFile, previous});
    row("third download", {previous, noFile, older}, {fresh, noFile, previous});
    row("a download was left over", {previous, older, noFile}, {fresh, noFile, previous});
    row("killed between the two renames before", {noFile, older, previous}, {fresh, noFile, noFile});
    row("only a backup is left", {noFile, noFile, previous}, {fresh, noFile, noFile});
}

void TestImageStore::stores()
{
    QFETCH(ImageFiles, before);
    QFETCH(ImageFiles, after);
    place(before);
    const ImageStore store(name);
    QVERIFY(store.writeDownload(fresh));
    QCOMPARE(found(), (ImageFiles{before.image, fresh, before.image.isNull() ? before.backup : noFile}));
    QVERIFY(store.replaceImage(true));
    QVERIFY(store.hasImage());
    QCOMPARE(found(), after);
}

void TestImageStore::storesAnySize_data()
{
    QTest::addColumn<int>("size");
    for (const int size : {0, 1, 65535, 65536, 65537, 15000000})
        QTest::addRow("%d bytes", size) << size;
}

void TestImageStore::storesAnySize()
{
    QFETCH(int, size);
    const ImageStore store(name);
    const QByteArray image = QByteArray("").leftJustified(size, 'z');
    QVERIFY(store.writeDownload(image));
    QVERIFY(store.replaceImage(true));
    QCOMPARE(found(), (ImageFiles{image, noFile, noFile}));
}

void TestImageStore::bytesReachTheDiskBeforeTheyBecomeTheImage()
{
    const ImageStore store(name);
    faultycalls::clear();
    QVERIFY(store.writeDownload("small enough to wait in a buffer"));
    QVERIFY(store.replaceImage(true));
    std::vector<Call> calls = faultycalls::calls();
    std::erase(calls, Call::unlink);
    QVERIFY((calls == std::vector{Call::write, Call::fsync, Call::rename}));
}

/// A link under the download's name: what it points to stays as it is.
void TestImageStore::linkIsNotFollowed()
{
    const QString elsewhere = folder->filePath("elsewhere");
    QVERIFY((ImageFiles{previous, noFile, noFile}.placeAt(elsewhere)));
    QVERIFY(QFile::link(elsewhere, downloadOf(name)));
    const ImageStore store(name);
    QVERIFY(store.writeDownload(fresh));
    QVERIFY(store.replaceImage(true));
    QCOMPARE(ImageFiles::at(elsewhere).image, previous);
    QCOMPARE(found(), (ImageFiles{fresh, noFile, noFile}));
    QVERIFY(!QFileInfo(name).isSymLink());
}

void TestImageStore::diskRefuses_data()
{
    const Rows<Call, int, QByteArray> row("call", "error", "bytes");
    row("disk is full", Call::write, ENOSPC, fresh);
    row("disk is broken", Call::write, EIO, fresh);
    row("shows only when the buffer is flushed", Call::write, EFBIG, "small");
    row("shows only when the bytes go to the disk", Call::fsync, EIO, fresh);
}

/// Nothing of the download is left, the image is untouched.
void TestImageStore::diskRefuses()
{
    QFETCH(Call, call);
    QFETCH(int, error);
    QFETCH(QByteArray, bytes);
    place({previous, noFile, noFile});
    const ImageStore store(name);
    faultycalls::fail(call, 1, error);
    QVERIFY(!store.writeDownload(bytes));
    QCOMPARE(found(), (ImageFiles{previous, noFile, noFile}));
}

void TestImageStore::diskIsFullInMidFile()
{
    const ImageStore store(name);
    bool written = true;
    {
        const FileSizeLimit limit(20000);
        written = store.writeDownload(fresh);
    }
    QVERIFY(!written);
    QCOMPARE(found(), (ImageFiles{}));
}

void TestImageStore::nameTakenByAFolder()
{
    place({previous, noFile, noFile});
    QVERIFY(QDir().mkpath(downloadOf(name) + "/inside"));
    const ImageStore store(name);
    QVERIFY(!store.writeDownload(fresh));
    QCOMPARE(found(), (ImageFiles{previous, noFile, noFile}));
    QVERIFY(store.replaceImage(true));
    QVERIFY2(!store.hasImage(), "neither the folder nor the previous image passes for the new one");
    QCOMPARE(found(), (ImageFiles{noFile, noFile, previous}));
}

void TestImageStore::folderIsGone()
{
    QVERIFY(folder->remove());
    const ImageStore store(name);
    QVERIFY(!store.writeDownload(fresh));
    QVERIFY(store.replaceImage(true)); // nothing there, nothing to do
    QVERIFY(!store.hasImage());
}

void TestImageStore::onlyImageSurvivesAFailure_data()
{
    QTest::addColumn<bool>("isTaken");
    QTest::newRow("its name is free") << false;
    QTest::newRow("a folder has its name") << true;
}

/// With no image, the backup is the only one there is; a failed download must not cost it.
void TestImageStore::onlyImageSurvivesAFailure()
{
    QFETCH(bool, isTaken);
    place({noFile, older, previous});
    QVERIFY(!isTaken || QDir().mkpath(name + "/taken"));
    const ImageStore store(name);
    faultycalls::fail(Call::write, 1, ENOSPC);
    QVERIFY(!store.writeDownload(fresh));
    QCOMPARE(store.replaceImage(true), !isTaken);
    QCOMPARE(found(), (ImageFiles{noFile, noFile, previous}));
}

void TestImageStore::imageCannotBecomeTheBackup()
{
    place({previous, noFile, noFile});
    QVERIFY(QDir().mkpath(backupOf(name) + "/inside"));
    const ImageStore store(name);
    QVERIFY(store.writeDownload(fresh));
    QVERIFY(!store.replaceImage(true));
    QCOMPARE(found(), (ImageFiles{previous, fresh, noFile}));
}

void TestImageStore::downloadCannotBecomeTheImage()
{
    place({previous, noFile, noFile});
    const ImageStore store(name);
    QVERIFY(store.writeDownload(fresh));
    faultycalls::fail(Call::rename, 2, EIO);
    faultycalls::fail(Call::write, 1, EIO); // the toolkit copies what it cannot rename
    QVERIFY(!store.replaceImage(true));
    QVERIFY(!store.hasImage());
    QCOMPARE(found(), (ImageFiles{noFile, fresh, previous}));
}

void TestImageStore::replacingWithoutADownload()
{
    place({previous, noFile, noFile});
    const ImageStore store(name);
    QVERIFY(store.replaceImage(true));
    QVERIFY2(!store.hasImage(), "the previous image is never taken for the new one");
    QCOMPARE(found(), (ImageFiles{noFile, noFile, previous}));
}

/// One that could not be removed: it is not the new image.
void TestImageStore::replacingWithADownloadOfBefore()
{
    place({previous, older, noFile});
    const ImageStore store(name);
    QVERIFY(store.replaceImage(false));
    QVERIFY(!store.hasImage());
    QCOMPARE(found(), (ImageFiles{noFile, older, previous}));
}

void TestImageStore::killedAtAnyCall_data()
{
    QTest::addColumn<ImageFiles>("before");
    QTest::newRow("an image") << ImageFiles{previous, noFile, noFile};
    QTest::newRow("an image and its backup") << ImageFiles{previous, noFile, older};
    QTest::newRow("killed between the two renames before") << ImageFiles{noFile, fresh, previous};
    QTest::newRow("only a backup") << ImageFiles{noFile, noFile, previous};
}

/// Stores in a process that is killed before its nth file call. False once it got to its end alive.
bool TestImageStore::isKilledAtCall(int nthCall)
{
    const pid_t child = fork();
    if (child == 0) {
        faultycalls::kill(nthCall);
        const ImageStore store(name);
        const bool stored = store.writeDownload(fresh) && store.replaceImage(true);
        _exit(stored ? 0 : 1);
    }
    int status = 0;
    waitpid(child, &status, 0);
    return WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL;
}

void TestImageStore::killedAtAnyCall()
{
    QFETCH(ImageFiles, before);
    constexpr int mostCalls = 30;
    int killed = 0;
    for (bool alive = false; !alive && killed < mostCalls;) {
        place(before);
        alive = !isKilledAtCall(killed + 1);
        const ImageFiles left = found();
        const bool whole = left.image == previous || left.image == fresh || left.backup == previous;
        QVERIFY2(whole, qPrintable(QString("killed before call %1").arg(killed + 1)));
        killed += alive ? 0 : 1;
        const ImageStore next(name);
        QVERIFY(next.writeDownload(fresh) && next.replaceImage(true));
        QCOMPARE(found().image, fresh);
    }
    QVERIFY2(killed >= 4 && killed < mostCalls, qPrintable(QString::number(killed)));
}

QTEST_APPLESS_MAIN(TestImageStore)
#include "tst_imagestore.moc"
