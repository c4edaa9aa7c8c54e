#include "unit/seenrecord.h"

#include <QFile>
#include <QRegularExpression>
#include <QtTest>

#include <vector>

namespace {

constexpr std::uint16_t hb4 = 0x0A21;

struct Row
{
    const char* name;
    const wchar_t* product;
    const char* path;
    seenrecord::Kind kind;
    const char* line; ///< how it begins; nullptr: there is none
};

constexpr auto nameless =
    "The name of device 3a5d:0a21 cannot be read: this user seems to have no permission.";

constexpr Row rows[] = {
    {"a unit", L"HB4", "path", seenrecord::Kind::unit, nullptr},
    {"a unit of another model", L"LMB-2", "path", seenrecord::Kind::unit, nullptr},
    {"no strings", nullptr, "path", seenrecord::Kind::nameless, nameless},
    {"no strings and no path", nullptr, nullptr, seenrecord::Kind::nameless, nameless},
    {"a unit without path", L"HB4", nullptr, seenrecord::Kind::pathless, nullptr},
    {"a foreign name", L"Keyboard", "path", seenrecord::Kind::foreign,
     "Device 3a5d:0a21 calls itself \"Keyboard\", which is no unit's name: skipped."},
    {"a foreign name and no path", L"Keyboard", nullptr, seenrecord::Kind::foreign,
     "Device 3a5d:0a21 calls itself \"Keyboard\", which is no unit's name: skipped."},
    {"an empty name", L"", "path", seenrecord::Kind::foreign,
     "Device 3a5d:0a21 calls itself \"\", which is no unit's name: skipped."},
    {"a trailing blank", L"HB4 ", "path", seenrecord::Kind::foreign,
     "Device 3a5d:0a21 calls itself \"HB4 \", which is no unit's name: skipped."},
    {"a place holder", L"%1 %2", "path", seenrecord::Kind::foreign,
     "Device 3a5d:0a21 calls itself \"%1 %2\", which is no unit's name: skipped."},
    {"line ends and control characters", L"a\nb\r\x1B[2J\x7F\x9B", "path", seenrecord::Kind::foreign,
     "Device 3a5d:0a21 calls itself \"a?b??[2J??\", which is no unit's name: skipped."},
};

} // namespace

class TestSeenRecord : public QObject
{
    Q_OBJECT

private slots:
    void record_data();
    void record();
    void unopened();
    void ruleIsTheOneThatComesAlong();
};

void TestSeenRecord::record_data()
{
    QTest::addColumn<int>("index");
    for (int index = 0; index < static_cast<int>(std::size(rows)); ++index)
        QTest::newRow(rows[index].name) << index;
}

void TestSeenRecord::record()
{
    QFETCH(int, index);
    const Row& row = rows[index];
    QCOMPARE(static_cast<int>(seenrecord::kindOf(row.product, row.path)), static_cast<int>(row.kind));
    const auto line = seenrecord::lineForSkipped(hb4, row.product, row.path);
    QCOMPARE(line.has_value(), row.line != nullptr);
    if (!line)
        return;
    QVERIFY2(line->startsWith(row.line), qPrintable(*line));
    QCOMPARE(line->contains(".rules"), row.kind == seenrecord::Kind::nameless); // on Linux, where this runs
}

void TestSeenRecord::unopened()
{
    const QString line = seenrecord::lineForUnopened(0x2C01);
    QVERIFY2(
        line.startsWith("Unit 3a5d:2c01 cannot be opened: this user has no permission, or another program "
                        "has it open."),
        qPrintable(line));
}

void TestSeenRecord::ruleIsTheOneThatComesAlong()
{
    const QRegularExpression rule("[^ ]+\\.rules");
    for (const QString& line :
         {seenrecord::lineForSkipped(hb4, nullptr, "path").value_or(""), seenrecord::lineForUnopened(hb4)}) {
        const QString name = rule.match(line).captured();
        QVERIFY2(!name.isEmpty() && QFile::exists(TALVEX_RULES "/" + name), qPrintable(line));
    }
}

QTEST_APPLESS_MAIN(TestSeenRecord)
#include "tst_seenrecord.moc"
