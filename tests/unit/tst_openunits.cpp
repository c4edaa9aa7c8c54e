// Units are closed once each, and none while a thread is using it.

#include "unit/openunits.h"

#include <QtTest>

#include <future>
#include <thread>

using namespace std::chrono_literals;
using Call = OpenUnits::Call;

Q_DECLARE_METATYPE(Call)

namespace {

constexpr auto noTime = 0ms;
constexpr auto allTheTime = 10min;                                      ///< what is awaited comes by itself
const auto unseen = std::chrono::milliseconds(limits::lengthened(100)); ///< for an end that comes too early
constexpr int refused = -1;

/// Stands for the handle of an open unit, which nobody looks into.
hid_device* unitNumber(int number)
{
    static std::array<char, 4> places{};
    return reinterpret_cast<hid_device*>(&places.at(static_cast<std::size_t>(number)));
}

/// A call on another thread that lasts until it is told to end.
class LongCall
{
public:
    LongCall(OpenUnits& units, Call kind)
        : thread([this, &units, kind] {
              result = units.during(kind, refused, [this] {
                  begun.set_value();
                  end.get_future().wait();
                  return 1;
              });
          })
    {
        begun.get_future().wait();
    }
    ~LongCall()
    {
        if (thread.joinable())
            finish();
    }

    int finish()
    {
        end.set_value();
        thread.join();
        return result;
    }

private:
    std::promise<void> begun;
    std::promise<void> end;
    int result = 0;
    std::thread thread; ///< last: it uses the others
};

} // namespace

class TestOpenUnits : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void callsGiveTheirResult();
    void callsAreRefusedAtTheEnd();
    void allAreClosedOnce();
    void closedUnitIsLeftAlone();
    void noneIsClosedDuringACall_data();
    void noneIsClosedDuringACall();
    void limitedCallIsWaitedFor();
    void endlessCallIsNotWaitedFor();
    void busyIsWhatEndsByItself();

private:
    bool closeAll(std::chrono::milliseconds limit)
    {
        return units->closeAll(limit, [this](hid_device* unit) { closed += unit; });
    }

    std::unique_ptr<OpenUnits> units;
    QVector<hid_device*> closed;
};

void TestOpenUnits::init()
{
    units = std::make_unique<OpenUnits>();
    closed.clear();
}

void TestOpenUnits::callsGiveTheirResult()
{
    QCOMPARE(units->during(Call::limited, refused, [] { return 65; }), 65);
    QCOMPARE(units->during(Call::endless, refused, [] { return 64; }), 64);
}

void TestOpenUnits::callsAreRefusedAtTheEnd()
{
    QVERIFY(closeAll(noTime));
    bool isMade = false;
    const int result = units->during(Call::limited, refused, [&] {
        isMade = true;
        return 65;
    });
    QCOMPARE(result, refused);
    QVERIFY(!isMade);
}

void TestOpenUnits::allAreClosedOnce()
{
    units->add(unitNumber(1));
    units->add(unitNumber(2));
    QVERIFY(closeAll(noTime));
    QCOMPARE(closed, (QVector<hid_device*>{unitNumber(1), unitNumber(2)}));
    QVERIFY(closeAll(noTime));
    QCOMPARE(closed.size(), 2);
}

void TestOpenUnits::closedUnitIsLeftAlone()
{
    units->add(unitNumber(1));
    units->add(unitNumber(2));
    QVERIFY(units->remove(unitNumber(1)));
    QVERIFY(!units->remove(unitNumber(1)));
    QVERIFY(closeAll(noTime));
    QCOMPARE(closed, QVector<hid_device*>{unitNumber(2)});
}

void TestOpenUnits::noneIsClosedDuringACall_data()
{
    QTest::addColumn<Call>("kind");
    QTest::newRow("that ends by itself") << Call::limited;
    QTest::newRow("that may never end") << Call::endless;
}

void TestOpenUnits::noneIsClosedDuringACall()
{
    QFETCH(Call, kind);
    units->add(unitNumber(1));
    LongCall call(*units, kind);
    QVERIFY(!closeAll(noTime));
    QVERIFY(closed.isEmpty());
    QCOMPARE(call.finish(), 1);
    QVERIFY(closeAll(noTime));
    QCOMPARE(closed, QVector<hid_device*>{unitNumber(1)});
}

void TestOpenUnits::limitedCallIsWaitedFor()
{
    units->add(unitNumber(1));
    LongCall call(*units, Call::limited);
    std::future<bool> ended = std::async(std::launch::async, [this] { return closeAll(allTheTime); });
    // Once the wait has begun a call is refused.
    while (units->during(Call::limited, refused, [] { return 0; }) != refused)
        std::this_thread::yield();
    QCOMPARE(ended.wait_for(unseen), std::future_status::timeout);
    call.finish();
    QVERIFY(ended.get());
    QCOMPARE(closed, QVector<hid_device*>{unitNumber(1)});
}

void TestOpenUnits::endlessCallIsNotWaitedFor()
{
    units->add(unitNumber(1));
    const LongCall call(*units, Call::endless);
    QVERIFY(!closeAll(allTheTime)); // or the test would be ended
    QVERIFY(closed.isEmpty());
}

void TestOpenUnits::busyIsWhatEndsByItself()
{
    QVERIFY(!units->isBusy());
    LongCall endless(*units, Call::endless);
    QVERIFY(!units->isBusy());
    LongCall limited(*units, Call::limited);
    QVERIFY(units->isBusy());
    limited.finish();
    QVERIFY(!units->isBusy());
}

QTEST_GUILESS_MAIN(TestOpenUnits)

#include "tst_openunits.moc"
