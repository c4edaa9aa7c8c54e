#include "unit/seenrecord.h"

#include <QFile>
#include <QRegularExpression>
#include <QtTest>

#include <hidapi.h>

#include <string>
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

/// The list that the search gets: a letter for each record, "u" a unit, "f" another device, "p" a unit
/// without a path.
std::vector<hid_device_info> listOf(const QByteArray& letters)
{
    static std::wstring unit = L"HB4";
    static std::wstring other = L"Keyboard";
    static std::string path = "path";
    std::vector<hid_device_info> records(static_cast<std::size_t>(letters.size()));
    for (std::size_t i = 0; i < records.size(); ++i) {
        const char letter = letters.at(static_cast<int>(i));
        records[i].product_string = letter == 'f' ? other.data() : unit.data();
        records[i].path = letter == 'p' ? nullptr : path.data();
        records[i].next = i + 1 < records.size() ? &records[i + 1] : nullptr;
    }
    return records;
}

} // namespace

Q_DECLARE_METATYPE(Row)

class TestSeenRecord : public QObject
{
    Q_OBJECT

private slots:
    void record_data();
    void record();
    void choice_data();
    void choice();
    void unopened();
    void ruleIsTheOneThatComesAlong();
};

void TestSeenRecord::record_data()
{
    QTest::addColumn<Row>("row");
    for (const Row& row : rows)
        QTest::newRow(row.name) << row;
}

void TestSeenRecord::record()
{
    QFETCH(Row, row);
    QCOMPARE(static_cast<int>(seenrecord::kindOf(row.product, row.path)), static_cast<int>(row.kind));
    const auto line = seenrecord::lineForSkipped(hb4, row.product, row.path);
    QCOMPARE(line.has_value(), row.line != nullptr);
    if (!line)
        return;
    QVERIFY2(line->startsWith(row.line), qPrintable(*line));
#ifdef Q_OS_LINUX
    QCOMPARE(line->contains(".rules"), row.kind == seenrecord::Kind::nameless);
#else
    QVERIFY(!line->contains(".rules"));
#endif
}

void TestSeenRecord::choice_data()
{
    QTest::addColumn<QByteArray>("letters");
    QTest::addColumn<bool>("isDeck");
    QTest::addColumn<bool>("firstDeckSeen");
    QTest::addColumn<int>("chosen"); // an index, or -1: none
    QTest::addColumn<int>("firstDeck");
    QTest::newRow("nothing there") << QByteArray() << false << false << -1 << -1;
    QTest::newRow("a unit behind another device") << QByteArray("fu") << false << false << 1 << -1;
    QTest::newRow("two units") << QByteArray("uu") << false << false << 0 << -1;
    QTest::newRow("a unit without a path") << QByteArray("p") << false << false << -1 << -1;
    QTest::newRow("one deck") << QByteArray("u") << true << false << -1 << 0;
    QTest::newRow("two decks") << QByteArray("fupu") << true << false << 3 << 1;
    QTest::newRow("the deck that was missing") << QByteArray("fuu") << true << true << 1 << -1;
    QTest::newRow("no deck, with one seen before") << QByteArray("fp") << true << true << -1 << -1;
}

void TestSeenRecord::choice()
{
    QFETCH(QByteArray, letters);
    QFETCH(bool, isDeck);
    QFETCH(bool, firstDeckSeen);
    QFETCH(int, chosen);
    QFETCH(int, firstDeck);
    std::vector<hid_device_info> records = listOf(letters);
    const auto indexOf = [&](const hid_device_info* record) {
        return record == nullptr ? -1 : static_cast<int>(record - records.data());
    };
    const seenrecord::Choice choice =
        seenrecord::choose(records.empty() ? nullptr : records.data(), isDeck, firstDeckSeen);
    QCOMPARE(indexOf(choice.chosen), chosen);
    QCOMPARE(indexOf(choice.firstDeck), firstDeck);
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
#ifndef Q_OS_LINUX
    QSKIP("only Linux has such rules");
#endif
    const QRegularExpression rule("[^ ]+\\.rules");
    for (const QString& line :
         {seenrecord::lineForSkipped(hb4, nullptr, "path").value_or(""), seenrecord::lineForUnopened(hb4)}) {
        const QString name = rule.match(line).captured();
        QVERIFY2(!name.isEmpty() && QFile::exists(TALVEX_RULES "/" + name), qPrintable(line));
    }
}

QTEST_APPLESS_MAIN(TestSeenRecord)
#include "tst_seenrecord.moc"
