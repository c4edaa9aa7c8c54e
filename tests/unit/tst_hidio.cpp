#include "unit/hidio.h"
#include "unit/report.h"

#include "virtualunit/hidapi/virtualbus.h"

#include <QtTest>

namespace {

/// Has a report for every read, and looks during each call whether one is under way that ends by itself.
class LookingUnit : public virtualbus::Device
{
public:
    bool open(virtualbus::Milliseconds /*now*/) override { return true; }
    void close(virtualbus::Milliseconds /*now*/) override {}
    virtualunit::VirtualUnit::Receipt write(std::span<const std::uint8_t> /*bytes*/,
                                            virtualbus::Milliseconds /*now*/) override
    {
        isBusy = hidio::isBusy();
        return {};
    }
    std::optional<std::vector<std::uint8_t>> takeInput(virtualbus::Milliseconds /*now*/) override
    {
        isBusy = hidio::isBusy();
        saysOne = !saysOne; // the bus asks until there is nothing more
        return saysOne ? std::optional(std::vector<std::uint8_t>(report::payloadLength, 0x5A)) : std::nullopt;
    }

    bool isBusy = false;

private:
    bool saysOne = false;
};

using HidCall = int (*)(hid_device*, unsigned char*);

int write(hid_device* device, unsigned char* bytes)
{
    return hidio::write(device, bytes);
}

int read(hid_device* device, unsigned char* bytes)
{
    return hidio::read(device, bytes, 250);
}

} // namespace

Q_DECLARE_METATYPE(HidCall)

class TestHidIo : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void call_data();
    void call();
    void noHandle_data();
    void noHandle();
    void secondClosingIsNone();
    void theEnd(); // the last: hidio is at its end for the whole process

private:
    static void addCalls();

    std::shared_ptr<LookingUnit> unit;
    hid_device* device = nullptr;
    report::Output bytes{};
};

void TestHidIo::init()
{
    virtualbus::clear();
    unit = std::make_shared<LookingUnit>();
    virtualbus::attach(virtualbus::DeviceRecord{.productId = 0x0A21, .product = "HB4"}, unit);
    device = hidio::open("virtual:1");
    QVERIFY(device != nullptr);
    bytes.fill(0);
}

void TestHidIo::addCalls()
{
    QTest::addColumn<HidCall>("make");
    QTest::addColumn<QString>("line"); ///< as the HID library sees it
    QTest::addColumn<bool>("isBusy");
    const QString zeros(2 * static_cast<int>(report::outputLength), '0');
    QTest::newRow("write") << HidCall(write) << "hid_write handle=1 length=65 bytes=" + zeros + " result=65"
                           << true;
    QTest::newRow("read") << HidCall(read) << "hid_read_timeout handle=1 length=64 timeout=250 result=64"
                          << true;
    QTest::newRow("read without end")
        << HidCall(hidio::readBlocking) << "hid_read handle=1 length=64 result=64" << false;
}

void TestHidIo::call_data()
{
    addCalls();
}

void TestHidIo::call()
{
    QFETCH(HidCall, make);
    make(device, bytes.data());
    QTEST(QString::fromStdString(lineOf(virtualbus::calls().back())), "line");
    QTEST(unit->isBusy, "isBusy");
    QVERIFY(!hidio::isBusy());
}

void TestHidIo::noHandle_data()
{
    addCalls();
}

void TestHidIo::noHandle()
{
    QFETCH(HidCall, make);
    const std::size_t before = virtualbus::calls().size();
    QCOMPARE(make(nullptr, bytes.data()), hidio::failed);
    hidio::askForSerialNumber(nullptr);
    hidio::close(nullptr);
    QCOMPARE(virtualbus::calls().size(), before);
}

void TestHidIo::secondClosingIsNone()
{
    hidio::close(device);
    hidio::close(device);
    QCOMPARE(virtualbus::callsOf("hid_close").size(), std::size_t{1});
}

void TestHidIo::theEnd()
{
    hidio::refuseWrites();
    QCOMPARE(write(device, bytes.data()), hidio::failed);
    QCOMPARE(virtualbus::callsOf("hid_write").size(), std::size_t{0});
    QCOMPARE(read(device, bytes.data()), 64);

    hidio::closeAll(std::chrono::milliseconds(0));
    QCOMPARE(virtualbus::openHandles(), 0);
    QCOMPARE(read(device, bytes.data()), hidio::failed);
    QVERIFY(hidio::open("virtual:1") == nullptr);
    QCOMPARE(virtualbus::callsOf("hid_open_path").size(), std::size_t{1});
}

QTEST_APPLESS_MAIN(TestHidIo)
#include "tst_hidio.moc"
