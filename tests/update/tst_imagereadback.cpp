#include "tests/support/faultycalls.h"
#include "tests/support/imagefiles.h"
#include "tests/support/texts.h"
#include "update/imagestore.h"

#include <QTemporaryDir>
#include <QtTest>

using Kept = std::function<std::string(std::string)>; ///< what the disk makes of the bytes
Q_DECLARE_METATYPE(Kept)

namespace {

const QByteArray previous(50000, 'p');
const QByteArray fresh(70000, 'f');

} // namespace

/// A disk that reports no error, and keeps something else than it was given.
class TestImageReadBack : public QObject
{
    Q_OBJECT

private slots:
    void cleanup() { faultycalls::clear(); }
    void diskKeepsSomethingElse_data();
    void diskKeepsSomethingElse();
};

void TestImageReadBack::diskKeepsSomethingElse_data()
{
    QTest::addColumn<Kept>("kept");
    const auto flipAt = [](std::size_t index) {
        return [index](std::string bytes) {
            bytes.at(index) ^= 1;
            return bytes;
        };
    };
    QTest::newRow("nothing") << Kept([](const std::string&) { return std::string(); });
    QTest::newRow("a byte too few") << Kept([](std::string bytes) { return bytes.erase(0, 1); });
    QTest::newRow("a byte too many") << Kept([](std::string bytes) { return bytes + '\0'; });
    QTest::newRow("another first byte") << Kept(flipAt(0));
    QTest::newRow("another byte behind the first 64 KiB") << Kept(flipAt(65536));
    QTest::newRow("another last byte") << Kept(flipAt(std::size_t(fresh.size() - 1)));
}

void TestImageReadBack::diskKeepsSomethingElse()
{
    QFETCH(Kept, kept);
    const QTemporaryDir folder;
    const QString name = folder.filePath(filename::image);
    QVERIFY((ImageFiles{previous, noFile, noFile}.placeAt(name)));
    const ImageStore store(name);
    faultycalls::spoil(kept);
    QVERIFY(!store.writeDownload(fresh));
    QCOMPARE(ImageFiles::at(name), (ImageFiles{previous, noFile, noFile}));
}

QTEST_APPLESS_MAIN(TestImageReadBack)
#include "tst_imagereadback.moc"
