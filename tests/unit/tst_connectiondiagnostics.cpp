#include "tests/support/boxlines.h"
#include "tests/support/logcapture.h"
#include "tests/support/scriptedunit.h"
#include "tests/support/testwindow.h"
#include "unit/seenrecord.h"

#include <QtTest>

#include <functional>

namespace {

void plugInClosed(UnitType type)
{
    virtualbus::failOpens(ScriptedUnit::plugInReporting(type)->number, true);
}

std::uint16_t productOf(UnitType type)
{
    return static_cast<std::uint16_t>(models::of(type).productId);
}

QString foreignLine(UnitType type, const wchar_t* product)
{
    return seenrecord::lineForSkipped(productOf(type), product, "path").value_or("");
}

QString unopenedLine(UnitType type)
{
    return seenrecord::lineForUnopened(productOf(type));
}

using Action = std::function<void()>;

struct Row
{
    const char* name;
    Action plugIn;
    QStringList lines; ///< of one press
    int openings;      ///< tried in one press
};

/// What was said, without Qt's own remark about boxes where there is no screen.
QStringList linesOf(const LogCapture& log)
{
    QStringList lines = log.lines();
    lines.removeAll("This plugin does not support propagateSizeHints()");
    return lines;
}

const QString namelessHb4 = foreignLine(UNIT_HB4, nullptr);

const std::vector<Row>& failures()
{
    static const std::vector<Row> all{
        {"nothing there", [] {}, {}, 0},
        {"no strings", [] { (void)ScriptedUnit::plugIn(UNIT_HB4, std::nullopt); }, {namelessHb4}, 0},
        {"a foreign name",
         [] { (void)ScriptedUnit::plugIn(UNIT_PLT65, "Keyboard"); },
         {foreignLine(UNIT_PLT65, L"Keyboard")},
         0},
        {"a unit that does not open", [] { plugInClosed(UNIT_LMB2); }, {unopenedLine(UNIT_LMB2)}, 1},
        {"no path", [] { (void)ScriptedUnit::plugInWithoutPath(UNIT_HB4); }, {}, 0},
        {"a deck without path", [] { (void)ScriptedUnit::plugInWithoutPath(UNIT_TRK300_LEFT); }, {}, 0},
        {"a deck without strings",
         [] { (void)ScriptedUnit::plugIn(UNIT_TRK300_LEFT, std::nullopt); },
         {foreignLine(UNIT_TRK300_LEFT, nullptr)},
         0},
        {"one of each",
         [] {
             (void)ScriptedUnit::plugIn(UNIT_HB4, std::nullopt);
             plugInClosed(UNIT_HB2);
             (void)ScriptedUnit::plugIn(UNIT_HBX, "Mouse");
         },
         {namelessHb4, unopenedLine(UNIT_HB2), foreignLine(UNIT_HBX, L"Mouse")},
         1},
        {"two alike",
         [] {
             (void)ScriptedUnit::plugIn(UNIT_HB4, std::nullopt);
             (void)ScriptedUnit::plugIn(UNIT_HB4, std::nullopt);
         },
         {namelessHb4, namelessHb4},
         0},
        {"a pair that does not open",
         [] {
             plugInClosed(UNIT_TRK300_LEFT);
             plugInClosed(UNIT_TRK300_RIGHT);
         },
         {unopenedLine(UNIT_TRK300_RIGHT), unopenedLine(UNIT_TRK300_LEFT)},
         2},
        {"a pair whose first deck does not open",
         [] {
             plugInClosed(UNIT_TRK900_LEFT);
             ScriptedUnit::plugInReporting(UNIT_TRK900_RIGHT);
         },
         {unopenedLine(UNIT_TRK900_LEFT)},
         2},
    };
    return all;
}

} // namespace

Q_DECLARE_METATYPE(Action)
Q_DECLARE_METATYPE(Row)

/// What the diagnostics say when Connect finds a unit that it cannot have. The box stays the same.
class TestConnectionDiagnostics : public QObject
{
    Q_OBJECT

private slots:
    void init() { placeServiceFile(); }

    void notFound_data();
    void notFound();
    void connectedAllTheSame_data();
    void connectedAllTheSame();
};

void TestConnectionDiagnostics::notFound_data()
{
    QTest::addColumn<Row>("row");
    for (const Row& row : failures())
        QTest::newRow(row.name) << row;
}

/// The same lines at each press, from the records alone: nothing more is asked of the HID library.
void TestConnectionDiagnostics::notFound()
{
    QFETCH(Row, row);
    TestWindow window;
    row.plugIn();
    const LogCapture log;
    window.pressConnect();
    QCOMPARE(linesOf(log), row.lines);
    window.pressConnect();
    QCOMPARE(linesOf(log), row.lines + row.lines);
    QCOMPARE(window.boxes.lines(), (QStringList{boxline::notFound, boxline::notFound}));
    std::size_t others = 0;
    for (const virtualbus::Call& call : virtualbus::calls())
        if (call.function != "hid_enumerate" && call.function != "hid_free_enumeration" &&
            call.function != "hid_open_path" && call.function != "hid_close")
            ++others;
    QCOMPARE(others, std::size_t{0});
    QCOMPARE(openings().size(), static_cast<std::size_t>(2 * row.openings));
    QCOMPARE(virtualbus::openHandles(), 0);
}

void TestConnectionDiagnostics::connectedAllTheSame_data()
{
    QTest::addColumn<Action>("plugInOthers");
    QTest::addColumn<QStringList>("lines");
    const Action nameless = [] { (void)ScriptedUnit::plugIn(UNIT_HB4, std::nullopt); };
    const Action pathless = [] { (void)ScriptedUnit::plugInWithoutPath(UNIT_HB4); };
    const Action closed = [] { plugInClosed(UNIT_HB4); };
    const Action alike = [] { (void)ScriptedUnit::plugIn(UNIT_PLT65, std::nullopt); };
    QTest::newRow("alone") << Action([] {}) << QStringList{};
    QTest::newRow("behind a record without strings") << nameless << QStringList{namelessHb4};
    QTest::newRow("behind a record without path") << pathless << QStringList{};
    QTest::newRow("behind a unit that does not open") << closed << QStringList{unopenedLine(UNIT_HB4)};
    QTest::newRow("before another without strings") << alike << QStringList{};
}

void TestConnectionDiagnostics::connectedAllTheSame()
{
    QFETCH(Action, plugInOthers);
    QFETCH(QStringList, lines);
    TestWindow window;
    plugInOthers();
    ScriptedUnit::plugInReporting(UNIT_PLT65);
    const LogCapture log;
    window.pressConnect();
    QCOMPARE(linesOf(log), lines);
    QCOMPARE(window.boxes.lines(), QStringList{boxline::connected(UNIT_PLT65)});
}

QTEST_MAIN(TestConnectionDiagnostics)
#include "tst_connectiondiagnostics.moc"
