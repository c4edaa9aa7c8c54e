#include "tests/support/boxlines.h"
#include "tests/support/scriptedunit.h"
#include "tests/support/testwindow.h"

#include <QtTest>

namespace {

std::size_t enumerations()
{
    return virtualbus::callsOf("hid_enumerate").size();
}

} // namespace

class TestConnectionPair : public QObject
{
    Q_OBJECT

private slots:
    void init() { placeServiceFile(); }

    void pair_data();
    void pair();
    void deckWithAnotherName();
    void singleUnitBeforeTheDecks();
    void loneDeck_data();
    void loneDeck();
    void pressAfterALoneDeck_data();
    void pressAfterALoneDeck();
    void loneDeckHidesAHigherModel();
    void firstDeckCannotBeOpened();
    void pressAfterAPairThatCouldNotBeOpened_data();
    void pressAfterAPairThatCouldNotBeOpened();
    void deckSeenFirstAlone();
};

void TestConnectionPair::pair_data()
{
    QTest::addColumn<UnitType>("first");
    QTest::addColumn<UnitType>("second");
    QTest::newRow("TRK300, a list each") << UNIT_TRK300_LEFT << UNIT_TRK300_RIGHT;
    QTest::newRow("TRK900, a list each") << UNIT_TRK900_LEFT << UNIT_TRK900_RIGHT;
    QTest::newRow("two TRK300 left decks, one list") << UNIT_TRK300_LEFT << UNIT_TRK300_LEFT;
    QTest::newRow("two TRK900 right decks, one list") << UNIT_TRK900_RIGHT << UNIT_TRK900_RIGHT;
    QTest::newRow("decks of two players, lists apart") << UNIT_TRK300_LEFT << UNIT_TRK900_RIGHT;
    QTest::newRow("decks of two players, neighbouring lists") << UNIT_TRK300_RIGHT << UNIT_TRK900_LEFT;
}

void TestConnectionPair::pair()
{
    QFETCH(UnitType, first);
    QFETCH(UnitType, second);
    TestWindow window;
    const auto secondFound =
        ScriptedUnit::plugInReporting(second); // of two in one list the latest comes first
    const auto firstFound = ScriptedUnit::plugInReporting(first);
    window.pressConnect();
    QCOMPARE(window.boxes.lines(), QStringList{boxline::pairConnected(second)});
    QCOMPARE(enumerations(), static_cast<std::size_t>(second) + 1);
    QCOMPARE(openings(), (std::vector{secondFound->path(), firstFound->path()}));
    QCOMPARE(virtualbus::openHandles(), 2);
    QVERIFY(!window.button("connect_button").isEnabled());
}

void TestConnectionPair::deckWithAnotherName()
{
    TestWindow window;
    ScriptedUnit::plugInReporting(UNIT_TRK300_LEFT);
    ScriptedUnit::plugIn(UNIT_TRK300_RIGHT, "HB4")->say(Bytes(64, 0));
    window.pressConnect();
    QCOMPARE(window.boxes.lines(), QStringList{boxline::pairConnected(UNIT_TRK300_LEFT)});
}

void TestConnectionPair::singleUnitBeforeTheDecks()
{
    TestWindow window;
    ScriptedUnit::plugInReporting(UNIT_TRK300_LEFT);
    ScriptedUnit::plugInReporting(UNIT_TRK300_RIGHT);
    const auto single = ScriptedUnit::plugInReporting(UNIT_PLT70);
    window.pressConnect();
    QCOMPARE(window.boxes.lines(), QStringList{boxline::connected(UNIT_PLT70)});
    QCOMPARE(openings(), std::vector{single->path()});
}

void TestConnectionPair::loneDeck_data()
{
    QTest::addColumn<UnitType>("type");
    for (const models::Model& model : models::all)
        if (model.isDeck())
            QTest::newRow(model.option) << model.type;
}

void TestConnectionPair::loneDeck()
{
    QFETCH(UnitType, type);
    TestWindow window;
    const QStringList before = window.controls();
    ScriptedUnit::plugInReporting(type);
    window.pressConnect();
    QCOMPARE(window.boxes.lines(), QStringList{boxline::notFound});
    QCOMPARE(enumerations(), models::all.size());
    QCOMPARE(openings().size(), std::size_t{0});
    QCOMPARE(window.controls(), before);
}

void TestConnectionPair::pressAfterALoneDeck_data()
{
    QTest::addColumn<int>("type");
    QTest::newRow("nothing new") << -1;
    QTest::newRow("its twin") << int{UNIT_TRK300_RIGHT};
    QTest::newRow("another unit of its own") << int{UNIT_TRK300_LEFT};
    QTest::newRow("a model that is tried first") << int{models::all.front().type};
    QTest::newRow("a model that is tried last") << int{models::all.back().type};
}

void TestConnectionPair::pressAfterALoneDeck()
{
    QFETCH(int, type);
    TestWindow window;
    ScriptedUnit::plugInReporting(UNIT_TRK300_LEFT);
    window.pressConnect();
    if (type >= 0)
        ScriptedUnit::plugInReporting(static_cast<UnitType>(type));
    const std::size_t enumerated = enumerations();
    window.pressConnect();
    QCOMPARE(window.boxes.lines(), QStringList{boxline::notFound}); // that of the first press
    QCOMPARE(enumerations(), enumerated + 1);
    QCOMPARE(openings().size(), std::size_t{0});
    QVERIFY(window.button("connect_button").isEnabled());
}

void TestConnectionPair::loneDeckHidesAHigherModel()
{
    TestWindow window;
    ScriptedUnit::plugInReporting(UNIT_TRK300_LEFT);
    ScriptedUnit::plugInReporting(UNIT_PLT65);
    window.pressConnect();
    QCOMPARE(window.boxes.lines(), QStringList{boxline::notFound});
    QCOMPARE(openings().size(), std::size_t{0});
    QCOMPARE(virtualbus::openHandles(), 0);
}

/// The deck seen first is opened last; without it there is no pair.
void TestConnectionPair::firstDeckCannotBeOpened()
{
    TestWindow window;
    const auto left = ScriptedUnit::plugInReporting(UNIT_TRK300_LEFT);
    const auto right = ScriptedUnit::plugInReporting(UNIT_TRK300_RIGHT);
    virtualbus::failOpens(left->number, true);
    window.pressConnect();
    QCOMPARE(window.boxes.lines(), QStringList{boxline::notFound});
    QCOMPARE(openings(), (std::vector{right->path(), left->path()}));
    QCOMPARE(enumerations(), std::size_t{UNIT_TRK300_RIGHT + 1}); // nothing is tried after the pair
    QCOMPARE(virtualbus::openHandles(), 0);
    QVERIFY(window.button("connect_button").isEnabled());
    window.pressLogKey(); // offers nothing of no unit
    QVERIFY(!window.button("downloadLogFile").isVisible());
}

void TestConnectionPair::pressAfterAPairThatCouldNotBeOpened_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<QString>("box");
    QTest::addColumn<int>("handles");
    QTest::newRow("the same pair") << -1 << boxline::pairConnected(UNIT_TRK300_LEFT) << 2;
    QTest::newRow("a single unit plugged in") << int{UNIT_HB4} << boxline::connected(UNIT_HB4) << 1;
}

void TestConnectionPair::pressAfterAPairThatCouldNotBeOpened()
{
    QFETCH(int, type);
    QFETCH(QString, box);
    QFETCH(int, handles);
    TestWindow window;
    const auto left = ScriptedUnit::plugInReporting(UNIT_TRK300_LEFT);
    ScriptedUnit::plugInReporting(UNIT_TRK300_RIGHT);
    virtualbus::failOpens(left->number, true);
    window.pressConnect();
    virtualbus::failOpens(left->number, false);
    if (type >= 0)
        ScriptedUnit::plugInReporting(static_cast<UnitType>(type));
    window.pressConnect();
    QCOMPARE(window.boxes.lines(), (QStringList{boxline::notFound, box}));
    QCOMPARE(virtualbus::openHandles(), handles);
    QVERIFY(!window.button("connect_button").isEnabled());
}

/// The deck completing the pair does not open; only the one seen first decides, so the pair is connected.
void TestConnectionPair::deckSeenFirstAlone()
{
    TestWindow window;
    ScriptedUnit::plugInReporting(UNIT_TRK300_LEFT);
    virtualbus::failOpens(ScriptedUnit::plugInReporting(UNIT_TRK300_RIGHT)->number, true);
    expectDiagnostic("Can't read current version\n");
    window.pressConnect();
    QCOMPARE(window.boxes.lines(), QStringList{boxline::pairConnected(UNIT_TRK300_LEFT)});
    QCOMPARE(virtualbus::openHandles(), 1);
}

QTEST_MAIN(TestConnectionPair)
#include "tst_connectionpair.moc"
