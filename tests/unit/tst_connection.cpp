#include "tests/support/boxlines.h"
#include "tests/support/scriptedunit.h"
#include "tests/support/testwindow.h"

#include <QtTest>

namespace {

/// The product IDs asked for since the bus was cleared, in order.
std::vector<int> enumeratedProducts()
{
    std::vector<int> products;
    for (const virtualbus::Call& call : virtualbus::callsOf("hid_enumerate"))
        products.push_back(call.product.value());
    return products;
}

/// Those of the models up to this one, or of all.
std::vector<int> productsUpTo(UnitType last = models::all.back().type)
{
    std::vector<int> products;
    for (int type = 0; type <= last; ++type)
        products.push_back(models::of(type).productId);
    return products;
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
    void skippedRecordsPrecedeTheTakenOne();
    void firstOfTwoInOneList();
    void lowerModelWins();
    void unitThatCannotBeOpened();
    void nextModelAfterOneThatCannotBeOpened();
    void pressAfterAFailure();
    void connectedUnitIsKept();
    void unreadableVersionIsConnected();
};

void TestConnection::nothingAttached()
{
    TestWindow window;
    const QStringList before = window.controls();
    window.pressConnect();
    QCOMPARE(window.boxes.lines(), QStringList{boxline::notFound});
    QCOMPARE(enumeratedProducts(), productsUpTo());
    for (const virtualbus::Call& call : virtualbus::callsOf("hid_enumerate"))
        QCOMPARE(int{call.vendor.value()}, 0x3A5D);
    QCOMPARE(virtualbus::calls().size(), models::all.size()); // and nothing else
    QVERIFY(window.button("connect_button").isEnabled());
    QCOMPARE(window.controls(), before);
}

void TestConnection::singleUnit_data()
{
    QTest::addColumn<UnitType>("type");
    for (const models::Model& model : models::all)
        if (!model.isDeck())
            QTest::newRow(model.option) << model.type;
}

void TestConnection::singleUnit()
{
    QFETCH(UnitType, type);
    TestWindow window;
    ScriptedUnit::plugInReporting(type);
    window.pressConnect();
    QCOMPARE(window.boxes.lines(), QStringList{boxline::connected(type)});
    QCOMPARE(enumeratedProducts(), productsUpTo(type));
    QCOMPARE(virtualbus::openHandles(), 1);
    QVERIFY(!window.button("connect_button").isEnabled());
}

/// The name of any model will do for any other.
void TestConnection::acceptableName_data()
{
    QTest::addColumn<QByteArray>("name");
    for (const models::Model& model : models::all)
        for (const char* name : model.names)
            if (name != nullptr)
                QTest::newRow(name) << QByteArray(name);
}

void TestConnection::acceptableName()
{
    QFETCH(QByteArray, name);
    TestWindow window;
    ScriptedUnit::plugIn(UNIT_ZEQ_PRO, name.toStdString())->say(Bytes(64, 0));
    window.pressConnect();
    QCOMPARE(window.boxes.lines(), QStringList{boxline::connected(UNIT_ZEQ_PRO)});
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
    window.pressConnect();
    QCOMPARE(window.boxes.lines(), QStringList{boxline::notFound});
    QCOMPARE(openings().size(), std::size_t{0});
}

void TestConnection::skippedRecordsPrecedeTheTakenOne()
{
    TestWindow window;
    (void)ScriptedUnit::plugIn(UNIT_HB4, std::nullopt);
    (void)ScriptedUnit::plugIn(UNIT_HB4, "Keyboard");
    const auto unit = ScriptedUnit::plugInReporting(UNIT_HB4);
    window.pressConnect();
    QCOMPARE(window.boxes.lines(), QStringList{boxline::connected(UNIT_HB4)});
    QCOMPARE(openings(), std::vector{unit->path()});
}

void TestConnection::firstOfTwoInOneList()
{
    TestWindow window;
    (void)ScriptedUnit::plugIn(UNIT_HB4);
    const auto first = ScriptedUnit::plugInReporting(UNIT_HB4); // in the list: the latest comes first there
    window.pressConnect();
    QCOMPARE(openings(), std::vector{first->path()});
    QCOMPARE(virtualbus::openHandles(), 1);
}

void TestConnection::lowerModelWins()
{
    TestWindow window;
    const auto plugged = ScriptedUnit::plugIn(UNIT_PLT65);
    const auto lower = ScriptedUnit::plugInReporting(UNIT_HB2);
    window.pressConnect();
    QCOMPARE(window.boxes.lines(), QStringList{boxline::connected(UNIT_HB2)});
    QCOMPARE(openings(), std::vector{lower->path()});
    QCOMPARE(virtualbus::openHandles(), 1);
}

void TestConnection::unitThatCannotBeOpened()
{
    TestWindow window;
    const auto unit = ScriptedUnit::plugIn(UNIT_HB4);
    virtualbus::failOpens(unit->number, true);
    const QStringList before = window.controls();
    window.pressConnect();
    QCOMPARE(window.boxes.lines(), QStringList{boxline::notFound});
    QCOMPARE(enumeratedProducts(), productsUpTo());
    QCOMPARE(window.controls(), before);
    window.pressLogKey(); // offers nothing of no unit
    QCOMPARE(window.controls(), before);
}

void TestConnection::nextModelAfterOneThatCannotBeOpened()
{
    TestWindow window;
    const auto closed = ScriptedUnit::plugIn(UNIT_HB4);
    virtualbus::failOpens(closed->number, true);
    const auto unit = ScriptedUnit::plugInReporting(UNIT_LMB2);
    window.pressConnect();
    QCOMPARE(window.boxes.lines(), QStringList{boxline::connected(UNIT_LMB2)});
    QCOMPARE(openings(), (std::vector{closed->path(), unit->path()}));
}

void TestConnection::pressAfterAFailure()
{
    TestWindow window;
    window.pressConnect();
    ScriptedUnit::plugInReporting(UNIT_HB4);
    window.pressConnect();
    QCOMPARE(window.boxes.lines(), (QStringList{boxline::notFound, boxline::connected(UNIT_HB4)}));
    QVERIFY(!window.button("connect_button").isEnabled());
}

void TestConnection::connectedUnitIsKept()
{
    TestWindow window;
    ScriptedUnit::plugInReporting(UNIT_HB4);
    window.pressConnect();
    const std::size_t calls = virtualbus::calls().size();
    window.pressConnect(); // Connect is disabled
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
    window.pressConnect();
    QCOMPARE(window.boxes.lines(), QStringList{boxline::connected(UNIT_HB4)});
    QCOMPARE(enumeratedProducts(), productsUpTo(UNIT_HB4));
}

QTEST_MAIN(TestConnection)
#include "tst_connection.moc"
