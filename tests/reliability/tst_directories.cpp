#include "tests/reliability/journeyfiles.h"
#include "tests/reliability/outcome.h"
#include "tests/reliability/travellers.h"
#include "tests/support/limits.h"
#include "tests/support/texts.h"

#include <QtTest>

#include <filesystem>
#include <fstream>

namespace {

/// Every byte that a file name can hold, once.
QByteArray everyByte()
{
    QByteArray name;
    for (int byte = 1; byte < 256; ++byte)
        if (byte != '/')
            name += static_cast<char>(byte);
    return name;
}

/// What the file holds whose name ends so; nothing if there is none.
QByteArray fileEndingIn(const std::filesystem::path& directory, const std::string& ending)
{
    for (const auto& entry : std::filesystem::directory_iterator(directory)) {
        if (!entry.path().native().ends_with(ending))
            continue;
        std::ifstream file(entry.path(), std::ios::binary);
        const std::string content{std::istreambuf_iterator<char>(file), {}};
        return QByteArray::fromStdString(content);
    }
    return {};
}

} // namespace

/// The program in a directory of an odd name finds and writes its files there, although it takes file names
/// for CP1251.
class TestDirectories : public QObject
{
    Q_OBJECT

private slots:
    void files_data();
    void files();
};

void TestDirectories::files_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<bool>("fetchesLog");
    const auto add = [](const char* row, const QByteArray& name) {
        QTest::addRow("%s, an update", row) << name << false;
        QTest::addRow("%s, a log", row) << name << true;
    };
    add("blanks", " my  programs ");
    add("Cyrillic in UTF-8", "Программы");
    add("Cyrillic in CP1251", "\xcf\xf0\xee\xe3\xf0\xe0\xec\xec\xfb");
    add("Japanese in UTF-8", "プログラム");
    add("Japanese in Shift JIS", "\x83\x76\x83\x8d\x83\x4f\x83\x89\x83\x80");
    add("per cent and hash", "100%#?&%2f");
    add("every byte there is", everyByte());
}

void TestDirectories::files()
{
    QFETCH(const QByteArray, name);
    QFETCH(const bool, fetchesLog);
    const QString phase = fetchesLog ? "log parts" : "stream";
    Traveller traveller(TALVEX_JOURNEY,
                        {"--in", name.toHex(), "computer", "sets its clock back by a day", phase});
    QTRY_VERIFY2_WITH_TIMEOUT(traveller.hasEnded(), "the program hangs", limits::hangMs());
    QVERIFY2(!traveller.crashed() && traveller.exitCode() == 0, qPrintable(traveller.errorOutput()));
    const std::filesystem::path directory =
        std::filesystem::path(QFile::encodeName(traveller.path()).toStdString()) / name.toStdString();
    if (fetchesLog)
        QCOMPARE(fileEndingIn(directory, "_log.enc"), unitLog());
    else
        QCOMPARE(fileEndingIn(directory, std::string("/") + filename::image), newImage());
    QCOMPARE(traveller.said("unit"), fetchesLog ? QStringList() : QStringList(unitword::updated));
    std::filesystem::remove_all(directory); // QTemporaryDir cannot spell it
}

QTEST_GUILESS_MAIN(TestDirectories)
#include "tst_directories.moc"
