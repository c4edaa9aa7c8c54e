#include "tests/support/boxlines.h"
#include "tests/support/scriptedunit.h"
#include "tests/support/testwindow.h"
#include "virtualunit/identity.h"

#include <QtTest>

namespace {

constexpr int productIds[] = {0x0A21, 0x0A22, 0x0A1F, 0x0B06, 0x0B10, 0x0A24, 0x0A23, 0x2C16, 0x2C17,
                              0x0D01, 0x0D02, 0x2C15, 0x2A41, 0x2A40, 0x2B55, 0x2B54, 0x2C01};

/// The product IDs asked for since the bus was cleared, in order.
std::vector<int> enumeratedProducts()
{
    std::vector<int> products;
    for (const virtualbus::Call& call : virtualbus::callsOf("hid_enumerate"))
        products.push_back(call.product.value());
    return products;
}

std::vector<int> firstProducts(std::size_t count)
{
    return {std::begin(productIds), std::begin(productIds) + static_cast<std::ptrdiff_t>(count)};
}

std::string openedPath()
{
    const auto opened = virtualbus::callsOf("hid_open_path");
    return opened.empty() ? std::string() : opened.back().path;
}

} // namespace

class TestConnection : public QObject
{
    Q_OBJECT

private slots:
    void init() { placeServiceFile(); }

    void nothingAttached();
    void singleUnit_data();
    void singleUnit();
    void acceptableName_data();
    void acceptableName();
    void foreignName_data();
    void foreignName();
    void noProductString();
    void noPath_data();
    void noPath();
    void skippedRecordsPrecedeTheTakenOne();
    void firstOfTwoInOneList();
    void lowerModelWins();
    void nameOfAnotherModel();
    void unitThatCannotBeOpened();
    void nextModelAfterOneThatCannotBeOpened();
    void pressAfterAFailure();
    void connectedUnitIsKept();
    void unreadableVersionIsConnected();

private:
    static void pressConnect(TestWindow& window)
    {
        QTest::mouseClick(&window.button("connect_button"), Qt::LeftButton);
        QCOMPARE(virtualbus::enumerationsNotFreed(), 0);
    }
};

void TestConnection::nothingAttached()
{
    TestWindow window;
    const QStringList before = window.controls();
    pressConnect(window);
    QCOMPARE(window.boxes.lines(), QStringList{boxline::notFound});
    QCOMPARE(enumeratedProducts(), firstProducts(17));
    for (const virtualbus::Call& call : virtualbus::callsOf("hid_enumerate"))
        QCOMPARE(int{call.vendor.value()}, 0x3A5D);
    QCOMPARE(virtualbus::calls().size(), std::size_t{17}); // and nothing else
    QVERIFY(window.button("connect_button").isEnabled());
    QCOMPARE(window.controls(), before);
}

void TestConnection::singleUnit_data()
{
    QTest::addColumn<int>("type");
    for (int type = 0; type <= 16; ++type)
        if (type < 12 || type > 15)
            QTest::newRow(virtualunit::identityOf(static_cast<UnitType>(type)).name.data()) << type;
}

void TestConnection::singleUnit()
{
    QFETCH(int, type);
    TestWindow window;
    const auto unit = ScriptedUnit::plugIn(static_cast<UnitType>(type));
    unit->say(Bytes(64, 0));
    pressConnect(window);
    QCOMPARE(window.boxes.lines(), QStringList{informationBox(unitModels.at(size_t(type)).connectedMessage)});
    QCOMPARE(enumeratedProducts(), firstProducts(static_cast<std::size_t>(type) + 1));
    QCOMPARE(static_cast<int>(window->unitType), type);
    QCOMPARE(int{window->headerOffset}, type >= 11 ? 60 : 0);
    QCOMPARE(int{window->payloadOffset}, type >= 11 ? 1 : 5);
    QCOMPARE(int{window->deckCount}, 1);
    QVERIFY(window->device != nullptr);
    QVERIFY(!window.button("connect_button").isEnabled());
}

void TestConnection::acceptableName_data()
{
    QTest::addColumn<QByteArray>("name");
    for (const char* name :
         {"HB2", "HB4", "PLT-70", "PLT-65", "TRK-300 L", "TRK-300 R", "TRK-900 L", "TRK-900 R", "PANEL",
          "PANEL4", "HBX", "DSK-10", "DSK-9", "DSK-6", "DSK-5", "LMB-1", "LMB-2"})
        QTest::newRow(name) << QByteArray(name);
}

void TestConnection::acceptableName()
{
    QFETCH(QByteArray, name);
    TestWindow window;
    const auto unit = ScriptedUnit::plugIn(UNIT_ZEQ_PRO, name.toStdString());
    unit->say(Bytes(64, 0));
    pressConnect(window);
    QCOMPARE(window.boxes.lines(), QStringList{informationBox("ZEQ PRO connected")});
}

void TestConnection::foreignName_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::newRow("one trailing blank") << QByteArray("HB4 ");
    QTest::newRow("one leading blank") << QByteArray(" HB4");
    QTest::newRow("lower case") << QByteArray("hb4");
    QTest::newRow("beginning only") << QByteArray("HB");
    QTest::newRow("longer") << QByteArray("HB44");
    QTest::newRow("no hyphen") << QByteArray("PLT70");
    QTest::newRow("empty") << QByteArray("");
    QTest::newRow("a mixer without a name of its own") << QByteArray("ZEQ PRO");
}

void TestConnection::foreignName()
{
    QFETCH(QByteArray, name);
    TestWindow window;
    (void)ScriptedUnit::plugIn(UNIT_HB4, name.toStdString());
    pressConnect(window);
    QCOMPARE(window.boxes.lines(), QStringList{boxline::notFound});
    QCOMPARE(virtualbus::callsOf("hid_open_path").size(), std::size_t{0});
}

void TestConnection::noProductString()
{
    TestWindow window;
    (void)ScriptedUnit::plugIn(UNIT_HB4, std::nullopt);
    pressConnect(window);
    QCOMPARE(window.boxes.lines(), QStringList{boxline::notFound});
    QCOMPARE(virtualbus::callsOf("hid_open_path").size(), std::size_t{0});
}

void TestConnection::noPath_data()
{
    QTest::addColumn<int>("type");
    QTest::newRow("a single unit") << int{UNIT_HB4};
    QTest::newRow("a deck") << int{UNIT_TRK300_LEFT};
}

void TestConnection::noPath()
{
    QFETCH(int, type);
    TestWindow window;
    (void)ScriptedUnit::plugInWithoutPath(static_cast<UnitType>(type));
    pressConnect(window);
    QCOMPARE(window.boxes.lines(), QStringList{boxline::notFound});
    QCOMPARE(virtualbus::callsOf("hid_open_path").size(), std::size_t{0});
    QVERIFY(!window->firstDeckSeen);
}

void TestConnection::skippedRecordsPrecedeTheTakenOne()
{
    TestWindow window;
    (void)ScriptedUnit::plugIn(UNIT_HB4, std::nullopt);
    (void)ScriptedUnit::plugIn(UNIT_HB4, "Keyboard");
    const auto unit = ScriptedUnit::plugIn(UNIT_HB4);
    unit->say(Bytes(64, 0));
    pressConnect(window);
    QCOMPARE(window.boxes.lines(), QStringList{informationBox("HB4 connected")});
    QCOMPARE(openedPath(), unit->path());
}

void TestConnection::firstOfTwoInOneList()
{
    TestWindow window;
    (void)ScriptedUnit::plugIn(UNIT_HB4);
    const auto first = ScriptedUnit::plugIn(UNIT_HB4); // in the list: the latest comes first there
    first->say(Bytes(64, 0));
    pressConnect(window);
    QCOMPARE(openedPath(), first->path());
    QCOMPARE(virtualbus::openHandles(), 1);
}

void TestConnection::lowerModelWins()
{
    TestWindow window;
    const auto plugged = ScriptedUnit::plugIn(UNIT_PLT65);
    const auto lower = ScriptedUnit::plugIn(UNIT_HB2);
    lower->say(Bytes(64, 0));
    pressConnect(window);
    QCOMPARE(window.boxes.lines(), QStringList{informationBox("HB2 connected")});
    QCOMPARE(openedPath(), lower->path());
    QCOMPARE(virtualbus::openHandles(), 1);
}

void TestConnection::nameOfAnotherModel()
{
    TestWindow window;
    const auto unit = ScriptedUnit::plugIn(UNIT_HB2, "LMB-2");
    unit->say(Bytes(64, 0));
    pressConnect(window);
    QCOMPARE(window.boxes.lines(), QStringList{informationBox("HB2 connected")});
    QCOMPARE(window->unitType, UNIT_HB2);
}

void TestConnection::unitThatCannotBeOpened()
{
    TestWindow window;
    const auto unit = ScriptedUnit::plugIn(UNIT_HB4);
    virtualbus::failOpens(unit->number, true);
    const QStringList before = window.controls();
    pressConnect(window);
    QCOMPARE(window.boxes.lines(), QStringList{boxline::notFound});
    QCOMPARE(enumeratedProducts(), firstProducts(17));
    QCOMPARE(window.controls(), before);
    QCOMPARE(window->device, static_cast<hid_device*>(nullptr));
}

void TestConnection::nextModelAfterOneThatCannotBeOpened()
{
    TestWindow window;
    virtualbus::failOpens(ScriptedUnit::plugIn(UNIT_HB4)->number, true);
    const auto unit = ScriptedUnit::plugIn(UNIT_LMB2);
    unit->say(Bytes(64, 0));
    pressConnect(window);
    QCOMPARE(window.boxes.lines(), QStringList{informationBox("LMB-2 connected")});
    QCOMPARE(openedPath(), unit->path());
}

void TestConnection::pressAfterAFailure()
{
    TestWindow window;
    pressConnect(window);
    const auto unit = ScriptedUnit::plugIn(UNIT_HB4);
    unit->say(Bytes(64, 0));
    pressConnect(window);
    QCOMPARE(window.boxes.lines(), (QStringList{boxline::notFound, informationBox("HB4 connected")}));
    QVERIFY(!window.button("connect_button").isEnabled());
}

void TestConnection::connectedUnitIsKept()
{
    TestWindow window;
    const auto unit = ScriptedUnit::plugIn(UNIT_HB4);
    unit->say(Bytes(64, 0));
    pressConnect(window);
    const std::size_t calls = virtualbus::calls().size();
    pressConnect(window); // Connect is disabled
    QCOMPARE(virtualbus::calls().size(), calls);
    QCOMPARE(virtualbus::openHandles(), 1);
    QCOMPARE(window.boxes.lines().size(), 1);
}

void TestConnection::unreadableVersionIsConnected()
{
    TestWindow window;
    const auto unit = ScriptedUnit::plugIn(UNIT_HB4);
    virtualbus::failReads(unit->number, true);
    expectDiagnostic("Can't read current version\n");
    pressConnect(window);
    QCOMPARE(window.boxes.lines(), QStringList{informationBox("HB4 connected")});
    QCOMPARE(enumeratedProducts(), firstProducts(1));
}

QTEST_MAIN(TestConnection)
#include "tst_connection.moc"
