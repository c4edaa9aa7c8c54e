#include "reliability/journeyfiles.h"
#include "reliability/travellers.h"
#include "support/evidence.h"

#include <QtTest>

namespace {

constexpr int journeyMs = 60000;   ///< from its beginning to its end, on a slow machine
constexpr int longestEndMs = 3000; ///< of the program

QString quoted(const QString& text)
{
    return QString::fromUtf8("“%1”").arg(text);
}

/// The image, its backup and the unit's log, as they lie on disk when all is over.
struct Disk
{
    QByteArray image;
    QByteArray backup;
    QByteArray download;
    QByteArray log;

    explicit Disk(const Traveller& traveller)
        : image(traveller.file("updater.sb")),
          backup(traveller.file("updater.sb.bkp")),
          download(traveller.file("updater.sb.upd")),
          log(traveller.file("*_log.enc"))
    {
    }

    [[nodiscard]] bool holdsAnImage() const
    {
        return image == newImage() || image == oldImage || backup == oldImage;
    }

    [[nodiscard]] QString images() const
    {
        if (image == newImage())
            return backup == oldImage ? "the new image is on disk, the old one is its backup"
                                      : "the new image is on disk";
        if (image == oldImage)
            return "the old image is on disk";
        const QString cut = !image.isEmpty() && newImage().startsWith(image) ? "an image cut short and " : "";
        return cut + "the old image, as its backup, " + (cut.isEmpty() ? "is" : "are") + " on disk";
    }

    [[nodiscard]] QString logState() const
    {
        if (log.isNull())
            return "there is no log file";
        if (log == unitLog())
            return "the whole log is on disk";
        if (log.isEmpty())
            return "the log file is empty";
        return unitLog().startsWith(log) ? "what was received is on disk"
                                         : "the log on disk has parts twice or other bytes";
    }
};

QString join(QStringList parts)
{
    parts.removeAll(QString());
    parts.removeDuplicates();
    return parts.join("; ");
}

/// What a user sees and keeps, in words.
QString outcomeOf(const Traveller& traveller, bool fetchesLog)
{
    static const QMap<QString, QString> units{
        {"updated", "the unit has the new firmware"},
        {"one deck updated", "only one deck has the new firmware"},
        {"not updated", "the unit keeps its firmware"},
        {"untouched", "nothing is sent to the unit"},
    };
    QStringList parts;
    for (const QString& box : traveller.said("box"))
        parts += quoted(box);
    for (const QString& unit : traveller.said("unit"))
        parts += units.value(unit, unit);
    const Disk disk(traveller);
    parts += fetchesLog ? disk.logState() : disk.images();
    if (traveller.crashed())
        parts += "the program is gone";
    else
        parts += traveller.said("closing").isEmpty() ? "the program ends" : "the program waits for its user";
    return join(parts);
}

} // namespace

/// Every fault in every phase. Whatever happens: no crash and no hang, the program ends within 3 s with exit
/// code 0, and an image is whole on disk.
class TestReliability : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cell_data();
    void cell();

private:
    const QString program = TALVEX_JOURNEY;
    QStringList lines; ///< of `--list`
    std::unique_ptr<Travellers> travellers;
};

void TestReliability::initTestCase()
{
    QProcess list;
    list.start(program, {"--list"});
    QVERIFY(list.waitForFinished() && list.exitCode() == 0);
    lines = QString::fromUtf8(list.readAllStandardOutput()).split('\n', Qt::SkipEmptyParts);
    for (const QString& line : qAsConst(lines))
        if (line.startsWith("row"))
            evidence::write(line.split('\t'));
}

void TestReliability::cell_data()
{
    QTest::addColumn<int>("number");
    QTest::addColumn<QStringList>("fields");
    travellers = std::make_unique<Travellers>(program);
    int number = 0;
    for (const QString& line : qAsConst(lines)) {
        const QStringList fields = line.split('\t').mid(1);
        if (!line.startsWith("cell"))
            continue;
        QTest::newRow(qPrintable(fields.join(", "))) << number++ << fields;
        travellers->plan(fields);
    }
}

void TestReliability::cell()
{
    QFETCH(const int, number);
    QFETCH(const QStringList, fields);
    const std::unique_ptr<Traveller> traveller = travellers->take(static_cast<std::size_t>(number));
    QTRY_VERIFY2_WITH_TIMEOUT(traveller->hasEnded(), "the program hangs", journeyMs);
    const bool isKilled = fields[1] == "kills the program" || fields[1] == "ends the session (SIGTERM)";
    QVERIFY2(traveller->crashed() == isKilled, qPrintable(traveller->errorOutput()));
    if (!isKilled) {
        QCOMPARE(traveller->exitCode(), 0);
        QCOMPARE(traveller->said("phase not reached"), QStringList());
        QVERIFY2(traveller->endingMs() < longestEndMs, qPrintable(QString::number(traveller->endingMs())));
    }
    QVERIFY(Disk(*traveller).holdsAnImage());
    const bool fetchesLog = fields[2].startsWith("log");
    evidence::cell(fields[0], fields[1], fields[2], outcomeOf(*traveller, fetchesLog));
}

QTEST_GUILESS_MAIN(TestReliability)
#include "tst_reliability.moc"
