#include "tests/support/boxlines.h"
#include "tests/support/scriptedunit.h"
#include "tests/support/testwindow.h"

#include <QtTest>

#include <hidapi.h>

namespace {

constexpr hid_device* noHandle = nullptr;

std::shared_ptr<ScriptedUnit> plugInDeck(int type)
{
    auto deck = ScriptedUnit::plugIn(static_cast<UnitType>(type));
    deck->say(Bytes(64, 0));
    return deck;
}

/// Paths of the successful and failed openings, in order.
std::vector<std::string> openings()
{
    std::vector<std::string> paths;
    for (const virtualbus::Call& call : virtualbus::callsOf("hid_open_path"))
        paths.push_back(call.path);
    return paths;
}

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
    void pairCannotBeOpened();
    void pressAfterAPairThatCouldNotBeOpened_data();
    void pressAfterAPairThatCouldNotBeOpened();
    void secondDeckAlone();

private:
    static void pressConnect(TestWindow& window)
    {
        QTest::mouseClick(&window.button("connect_button"), Qt::LeftButton);
        QCOMPARE(virtualbus::enumerationsNotFreed(), 0);
    }
};

void TestConnectionPair::pair_data()
{
    QTest::addColumn<int>("first");
    QTest::addColumn<int>("second");
    QTest::addColumn<QString>("message");
    QTest::newRow("TRK300, a list each") << 12 << 13 << "TRK300 connected";
    QTest::newRow("TRK900, a list each") << 14 << 15 << "TRK900 connected";
    QTest::newRow("two TRK300 left decks, one list") << 12 << 12 << "TRK300 connected";
    QTest::newRow("two TRK900 right decks, one list") << 15 << 15 << "TRK900 connected";
    QTest::newRow("decks of two players, lists apart") << 12 << 15 << "TRK900 connected";
    QTest::newRow("decks of two players, neighbouring lists") << 13 << 14 << "TRK900 connected";
}

void TestConnectionPair::pair()
{
    QFETCH(int, first);
    QFETCH(int, second);
    QFETCH(QString, message);
    TestWindow window;
    const auto secondFound = plugInDeck(second); // of two in one list the latest comes first
    const auto firstFound = plugInDeck(first);
    pressConnect(window);
    QCOMPARE(window.boxes.lines(), QStringList{informationBox(message)});
    QCOMPARE(enumerations(), static_cast<std::size_t>(second) + 1);
    QCOMPARE(openings(), (std::vector{secondFound->path(), firstFound->path()}));
    QVERIFY(window->device != nullptr);
    QVERIFY(window->secondDevice != nullptr);
    QVERIFY(window->device != window->secondDevice);
    QCOMPARE(static_cast<int>(window->unitType), second);
    QCOMPARE(int{window->deckCount}, 2);
    QVERIFY(!window->firstDeckSeen);
    QCOMPARE(int{window->headerOffset}, 60);
    QCOMPARE(int{window->payloadOffset}, 1);
    QVERIFY(!window.button("connect_button").isEnabled());
}

void TestConnectionPair::deckWithAnotherName()
{
    TestWindow window;
    plugInDeck(12);
    ScriptedUnit::plugIn(UNIT_TRK300_RIGHT, "HB4")->say(Bytes(64, 0));
    pressConnect(window);
    QCOMPARE(window.boxes.lines(), QStringList{informationBox("TRK300 connected")});
}

void TestConnectionPair::singleUnitBeforeTheDecks()
{
    TestWindow window;
    plugInDeck(12);
    plugInDeck(13);
    const auto single = plugInDeck(UNIT_PLT70);
    pressConnect(window);
    QCOMPARE(window.boxes.lines(), QStringList{informationBox("PLT70 connected")});
    QCOMPARE(openings(), std::vector{single->path()});
    QVERIFY(!window->firstDeckSeen);
}

void TestConnectionPair::loneDeck_data()
{
    QTest::addColumn<int>("type");
    QTest::newRow("TRK300 left") << 12;
    QTest::newRow("TRK300 right") << 13;
    QTest::newRow("TRK900 left") << 14;
    QTest::newRow("TRK900 right") << 15;
}

void TestConnectionPair::loneDeck()
{
    QFETCH(int, type);
    TestWindow window;
    const QStringList before = window.controls();
    const auto deck = plugInDeck(type);
    pressConnect(window);
    QCOMPARE(window.boxes.lines(), QStringList{boxline::notFound});
    QCOMPARE(enumerations(), std::size_t{17});
    QCOMPARE(openings().size(), std::size_t{0});
    QVERIFY(window->firstDeckSeen);
    QCOMPARE(int{window->deckCount}, 1);
    QCOMPARE(std::string(window->pendingDeckInfo->path), deck->path()); // its list is freed: this is a copy
    QCOMPARE(window.controls(), before);
}

void TestConnectionPair::pressAfterALoneDeck_data()
{
    QTest::addColumn<int>("type");
    QTest::newRow("nothing new") << -1;
    QTest::newRow("its twin") << 13;
    QTest::newRow("another unit of its own") << 12;
    QTest::newRow("a model that is tried first") << 0;
    QTest::newRow("a model that is tried last") << 16;
}

void TestConnectionPair::pressAfterALoneDeck()
{
    QFETCH(int, type);
    TestWindow window;
    plugInDeck(12);
    pressConnect(window);
    if (type >= 0)
        plugInDeck(type);
    const std::size_t enumerated = enumerations();
    pressConnect(window);
    QCOMPARE(window.boxes.lines(), QStringList{boxline::notFound}); // that of the first press
    QCOMPARE(enumerations(), enumerated + 1);
    QCOMPARE(openings().size(), std::size_t{0});
    QVERIFY(window.button("connect_button").isEnabled());
}

void TestConnectionPair::loneDeckHidesAHigherModel()
{
    TestWindow window;
    plugInDeck(12);
    plugInDeck(UNIT_PLT65);
    pressConnect(window);
    QCOMPARE(window.boxes.lines(), QStringList{boxline::notFound});
    QCOMPARE(openings().size(), std::size_t{0});
    QCOMPARE(virtualbus::openHandles(), 0);
}

/// The deck that was seen first is opened second; without it there is no pair.
void TestConnectionPair::firstDeckCannotBeOpened()
{
    TestWindow window;
    const auto left = plugInDeck(12);
    const auto right = plugInDeck(13);
    virtualbus::failOpens(left->number, true);
    pressConnect(window);
    QCOMPARE(window.boxes.lines(), QStringList{boxline::notFound});
    QCOMPARE(openings(), (std::vector{right->path(), left->path()}));
    QCOMPARE(enumerations(), std::size_t{14}); // nothing is tried after the pair
    QCOMPARE(virtualbus::openHandles(), 0);
    QCOMPARE(window->device, noHandle);
    QCOMPARE(window->secondDevice, noHandle);
    QCOMPARE(int{window->deckCount}, 1);
    QVERIFY(!window->firstDeckSeen);
    QVERIFY(window.button("connect_button").isEnabled());
}

void TestConnectionPair::pairCannotBeOpened()
{
    TestWindow window;
    virtualbus::failOpens(plugInDeck(12)->number, true);
    virtualbus::failOpens(plugInDeck(13)->number, true);
    pressConnect(window);
    QCOMPARE(window.boxes.lines(), QStringList{boxline::notFound});
    QCOMPARE(virtualbus::openHandles(), 0);
    QCOMPARE(int{window->deckCount}, 1);
    QVERIFY(window.button("connect_button").isEnabled());
}

void TestConnectionPair::pressAfterAPairThatCouldNotBeOpened_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<QString>("message");
    QTest::addColumn<int>("handles");
    QTest::newRow("the same pair") << -1 << "TRK300 connected" << 2;
    QTest::newRow("a single unit plugged in") << 0 << "HB4 connected" << 1;
}

void TestConnectionPair::pressAfterAPairThatCouldNotBeOpened()
{
    QFETCH(int, type);
    QFETCH(QString, message);
    QFETCH(int, handles);
    TestWindow window;
    const auto left = plugInDeck(12);
    plugInDeck(13);
    virtualbus::failOpens(left->number, true);
    pressConnect(window);
    virtualbus::failOpens(left->number, false);
    if (type >= 0)
        plugInDeck(type);
    pressConnect(window);
    QCOMPARE(window.boxes.lines(), (QStringList{boxline::notFound, informationBox(message)}));
    QCOMPARE(virtualbus::openHandles(), handles);
    QVERIFY(!window.button("connect_button").isEnabled());
}

/// Only the second deck's opening decides, so the pair counts as connected.
void TestConnectionPair::secondDeckAlone()
{
    TestWindow window;
    plugInDeck(12);
    virtualbus::failOpens(plugInDeck(13)->number, true);
    expectDiagnostic("Can't read current version\n");
    pressConnect(window);
    QCOMPARE(window.boxes.lines(), QStringList{informationBox("TRK300 connected")});
    QCOMPARE(window->device, noHandle);
    QVERIFY(window->secondDevice != nullptr);
    QCOMPARE(int{window->deckCount}, 2);
}

QTEST_MAIN(TestConnectionPair)
#include "tst_connectionpair.moc"
