#include "tests/support/imagefiles.h"
#include "tests/support/texts.h"
#include "update/imagestore.h"

#include <QDir>
#include <QTemporaryDir>
#include <QtTest>

#include <windows.h>

namespace {

const QByteArray none; ///< null: no such file
const QByteArray older(70000, 'o');
const QByteArray previous(50000, 'p');
const QByteArray fresh(60000, 'f');

/// A file that another program holds open, as a virus scanner does: it may be read meanwhile, and nothing
/// else. Windows goes by how each handle shares the file, whichever process has it: one of this process will
/// do.
class Held
{
public:
    explicit Held(const QString& name)
        : handle(CreateFileW(reinterpret_cast<const wchar_t*>(QDir::toNativeSeparators(name).utf16()),
                             GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr))
    {
    }
    ~Held() { CloseHandle(handle); }
    Q_DISABLE_COPY_MOVE(Held)
    [[nodiscard]] bool isHeld() const { return handle != INVALID_HANDLE_VALUE; }

private:
    HANDLE handle;
};

} // namespace
Q_DECLARE_METATYPE(ImageFiles)

/// Files that another program holds open cannot be renamed, replaced or removed there.
class TestHeldFiles : public QObject
{
    Q_OBJECT

private slots:
    void store_data();
    void store();
    void freeAgain();
};

void TestHeldFiles::store_data()
{
    QTest::addColumn<ImageFiles>("before");
    QTest::addColumn<QString>("held"); // behind the image's name
    QTest::addColumn<bool>("written");
    QTest::addColumn<bool>("replaced");
    QTest::addColumn<ImageFiles>("after");
    const auto row = [](const char* name, const ImageFiles& before, const char* held, bool written,
                        bool replaced, const ImageFiles& after) {
        QTest::newRow(name) << before << QString(held) << written << replaced << after;
    };
    row("the image", {previous, none, none}, "", true, false, {previous, fresh, none});
    row("the image, with a backup", {previous, none, older}, "", true, false, {previous, fresh, none});
    row("the backup", {previous, none, older}, ".bkp", true, false, {previous, fresh, older});
    row("a download that was left over", {previous, older, none}, ".upd", false, true,
        {none, older, previous}); // and does not pass for the new image
}

/// Nothing is lost: the image stays what and where it was, or becomes the backup.
void TestHeldFiles::store()
{
    QFETCH(ImageFiles, before);
    QFETCH(QString, held);
    QFETCH(bool, written);
    QFETCH(bool, replaced);
    QFETCH(ImageFiles, after);
    const QTemporaryDir folder;
    const QString name = folder.filePath(filename::image);
    QVERIFY(before.placeAt(name));
    const ImageStore store(name);
    {
        const Held file(name + held);
        QVERIFY(file.isHeld());
        QCOMPARE(store.writeDownload(fresh), written);
        QCOMPARE(store.replaceImage(written), replaced);
    }
    QCOMPARE(ImageFiles::at(name), after);
}

void TestHeldFiles::freeAgain()
{
    const QTemporaryDir folder;
    const QString name = folder.filePath(filename::image);
    QVERIFY((ImageFiles{previous, none, older}.placeAt(name)));
    const ImageStore store(name);
    {
        const Held image(name);
        QVERIFY(store.writeDownload(fresh));
        QVERIFY(!store.replaceImage(true));
    }
    QVERIFY(store.writeDownload(fresh));
    QVERIFY(store.replaceImage(true));
    QCOMPARE(ImageFiles::at(name), (ImageFiles{fresh, none, previous}));
}

QTEST_APPLESS_MAIN(TestHeldFiles)
#include "tst_heldfiles.moc"
