#include "tests/reliability/journeyfiles.h"
#include "tests/reliability/outcome.h"
#include "tests/reliability/travellers.h"
#include "tests/support/limits.h"
#include "tests/support/texts.h"

#include <QtTest>

namespace {

constexpr qint64 longestEndMs = 3000; ///< of the program

/// The image, its backup and the unit's log, as they lie on disk when all is over.
struct Disk
{
    QByteArray image;
    QByteArray backup;
    QByteArray download;
    QByteArray log;

    explicit Disk(const Traveller& traveller)
        : image(traveller.file(filename::image)),
          backup(traveller.file(filename::backup)),
          download(traveller.file(filename::download)),
          log(traveller.file(filename::anyLog))
    {
    }

    [[nodiscard]] bool holdsAnImage() const
    {
        return image == newImage() || image == oldImage || backup == oldImage;
    }

    [[nodiscard]] QString images() const
    {
        if (image == newImage())
            return backup == oldImage ? diskword::newImage : diskword::onlyNewImage;
        if (image == oldImage)
            return diskword::oldImage;
        if (backup != oldImage)
            return diskword::noImage;
        return !image.isEmpty() && newImage().startsWith(image) ? diskword::cutImage : diskword::onlyBackup;
    }

    [[nodiscard]] QString logState() const
    {
        if (log.isNull())
            return diskword::noLog;
        if (log == unitLog())
            return diskword::wholeLog;
        if (log.isEmpty())
            return diskword::emptyLog;
        return longLog().startsWith(log) ? diskword::cutLog : diskword::otherLog;
    }
};

/// What a user sees and keeps.
Outcome outcomeOf(const Traveller& traveller, bool fetchesLog)
{
    const Disk disk(traveller);
    Outcome seen;
    seen.boxes = traveller.said("box");
    seen.unit = traveller.said("unit").join(", ");
    seen.disk = fetchesLog ? disk.logState() : disk.images();
    seen.end = endword::gone;
    if (!traveller.crashed())
        seen.end = traveller.said("closing").isEmpty() ? endword::ends : endword::waits;
    return seen;
}

} // namespace

/// Every fault in every phase comes to what its table expects. Whatever happens: no crash and no hang, the
/// program ends within 3 s with exit code 0, an image is whole on disk, and the unit has nothing to complain
/// of but what is expected.
class TestReliability : public QObject
{
    Q_OBJECT

private slots:
    void cell_data();
    void cell();

private:
    const QString program = TALVEX_JOURNEY;
    std::unique_ptr<Travellers> travellers;
};

void TestReliability::cell_data()
{
    QTest::addColumn<int>("number");
    QTest::addColumn<QStringList>("fields");
    QProcess list;
    list.start(program, {"--list"});
    QVERIFY(list.waitForFinished(limits::hangMs()) && list.exitCode() == 0);
    travellers = std::make_unique<Travellers>(program);
    int number = 0;
    const QStringList lines = QString::fromUtf8(list.readAllStandardOutput()).split('\n');
    for (const QString& line : lines) {
        const QStringList fields = line.split('\t').mid(1);
        if (!line.startsWith("cell"))
            continue;
        const QStringList names = fields.mid(0, 3); // group, fault, phase
        QTest::newRow(qPrintable(names.join(", "))) << number++ << fields;
        travellers->plan(names);
    }
}

void TestReliability::cell()
{
    QFETCH(const int, number);
    QFETCH(const QStringList, fields);
    const std::unique_ptr<Traveller> traveller = travellers->take(static_cast<std::size_t>(number));
    QTRY_VERIFY2_WITH_TIMEOUT(traveller->hasEnded(), "the program hangs", limits::hangMs());
    const QString& expected = fields[3];
    const bool isGone = expected.endsWith(endword::gone);
    QVERIFY2(traveller->crashed() == isGone, qPrintable(traveller->errorOutput()));
    if (!isGone) {
        QCOMPARE(traveller->exitCode(), 0);
        QCOMPARE(traveller->said("phase not reached"), QStringList());
        QVERIFY2(traveller->endingMs() < longestEndMs, qPrintable(QString::number(traveller->endingMs())));
    }
    QVERIFY(Disk(*traveller).holdsAnImage());
    QCOMPARE(outcomeOf(*traveller, fields[2].startsWith("log")).sentence(), expected);
    QStringList complaints = traveller->said("complaint");
    complaints.removeDuplicates();
    complaints.sort();
    QCOMPARE(complaints, fields[4].split('|', Qt::SkipEmptyParts));
}

QTEST_GUILESS_MAIN(TestReliability)
#include "tst_reliability.moc"
