#include "tests/virtualunit/hidcalls.h"

#include <QTest>

using hidcalls::openUnit;

namespace {

constexpr unsigned short vendor = 0x3A5D;

} // namespace

/// Devices, handles and strings through hidapi's interface, as a caller sees them.
class TestVirtualHid : public QObject
{
    Q_OBJECT

private slots:
    void init() { virtualbus::clear(); }
    void cleanup() { virtualbus::clear(); }

    void enumerationFilters_data();
    void enumerationFilters();
    void absentManufacturerLeavesTheOthers();
    void opening();
    void openingBySerialNumber();
    void strings();
    void deviceInfo();
    void controlReportsAreRefused();
    void constantAnswers();
};

void TestVirtualHid::enumerationFilters_data()
{
    QTest::addColumn<int>("vendorId");
    QTest::addColumn<int>("productId");
    QTest::addColumn<QString>("found");
    const auto row = [](const char* name, int vendorId, int productId, const QString& found) {
        QTest::newRow(name) << vendorId << productId << found;
    };
    row("everything", 0, 0, "HB4 PLT-70 HB4");
    row("one model, twice", vendor, models::hb4.productId, "HB4 HB4");
    row("one model of any vendor", 0, models::plt70.productId, "PLT-70");
    row("other vendor", 0x1234, models::hb4.productId, "");
    row("other product", vendor, models::of(UNIT_HB2).productId, "");
}

void TestVirtualHid::enumerationFilters()
{
    QFETCH(int, vendorId);
    QFETCH(int, productId);
    QFETCH(QString, found);
    for (const char* model : {"hb4", "plt70", "hb4"})
        virtualbus::attach(host::options(model));
    hid_device_info* list =
        hid_enumerate(static_cast<unsigned short>(vendorId), static_cast<unsigned short>(productId));
    QStringList names;
    for (const hid_device_info* info = list; info != nullptr; info = info->next)
        names << QString::fromWCharArray(info->product_string);
    QCOMPARE(names.join(' '), found);
    QCOMPARE(virtualbus::enumerationsNotFreed(), found.isEmpty() ? 0 : 1);
    hid_free_enumeration(list);
    QCOMPARE(virtualbus::enumerationsNotFreed(), 0);
}

void TestVirtualHid::absentManufacturerLeavesTheOthers()
{
    virtualbus::attach(host::options("hb4,no-manufacturer=yes"));
    hid_device_info* list = hid_enumerate(0, 0);
    QVERIFY(list->manufacturer_string == nullptr);
    QCOMPARE(QString::fromWCharArray(list->product_string), QString("HB4"));
    QVERIFY(list->serial_number != nullptr);
    hid_free_enumeration(list);
}

void TestVirtualHid::opening()
{
    const int unit = virtualbus::attach(host::options("hb4"));
    virtualbus::attach(host::options("hb2,fault=cannot-open"));
    QVERIFY(hid_open_path("virtual:3") == nullptr);
    QVERIFY(hid_open_path("virtual:2") == nullptr);
    virtualbus::failOpens(unit, true);
    QVERIFY(hid_open_path("virtual:1") == nullptr);
    QCOMPARE(virtualbus::openHandles(), 0);
    virtualbus::failOpens(unit, false);
    hid_device* device = hid_open_path("virtual:1");
    QVERIFY(device != nullptr);
    QCOMPARE(virtualbus::openHandles(), 1);
    hid_close(device);
    QCOMPARE(virtualbus::openHandles(), 0);
}

void TestVirtualHid::openingBySerialNumber()
{
    virtualbus::DeviceRecord record;
    record.productId = 7;
    for (const char* serial : {"A", "B"}) {
        record.serial = serial;
        virtualbus::attach(record, std::make_shared<ScriptedUnit>());
    }
    QVERIFY(hid_open(vendor, 7, L"C") == nullptr);
    hid_device* first = hid_open(vendor, 7, L"A");
    QVERIFY(first != nullptr);
    QVERIFY(std::wcscmp(hid_get_device_info(first)->serial_number, L"A") == 0);
    QVERIFY(hid_open(vendor, 7, nullptr) != nullptr); // the one listed first
    QVERIFY(hid_open(vendor, 8, nullptr) == nullptr);
    QCOMPARE(virtualbus::enumerationsNotFreed(), 0);
}

/// The others are those that any program sees (observations.cpp).
void TestVirtualHid::strings()
{
    hid_device* const device = openUnit("trk300-left");
    wchar_t text[16];
    QCOMPARE(hid_get_indexed_string(device, 2, text, 16), 0);
    QVERIFY(std::wcscmp(text, L"TRK-300 L") == 0);
    QCOMPARE(hid_get_indexed_string(device, 4, text, 16), -1);
    QCOMPARE(hid_get_product_string(device, text, 0), -1);
}

void TestVirtualHid::deviceInfo()
{
    hid_device* const device = openUnit("lmb1");
    const hid_device_info* info = hid_get_device_info(device);
    QCOMPARE(QByteArray(info->path), QByteArray("virtual:1"));
    QCOMPARE(int(info->product_id), models::of(UNIT_LMB1).productId);
    QCOMPARE(hid_get_device_info(device), info);
    QCOMPARE(virtualbus::enumerationsNotFreed(), 0); // the handle owns it
    hid_close(device);
}

void TestVirtualHid::controlReportsAreRefused()
{
    hid_device* const device = openUnit("lmb1");
    unsigned char buffer[65] = {};
    QCOMPARE(hid_send_feature_report(device, buffer, sizeof buffer), -1);
    QCOMPARE(hid_get_feature_report(device, buffer, sizeof buffer), -1);
    QCOMPARE(hid_get_input_report(device, buffer, sizeof buffer), -1);
}

void TestVirtualHid::constantAnswers()
{
    QCOMPARE(hid_init(), 0);
    QCOMPARE(hid_exit(), 0);
    QVERIFY(std::wcslen(hid_error(nullptr)) > 0);
    QCOMPARE(hid_version()->minor, HID_API_VERSION_MINOR);
    QCOMPARE(QByteArray(hid_version_str()), QByteArray(HID_API_VERSION_STR));
    hid_free_enumeration(nullptr);
}

QTEST_GUILESS_MAIN(TestVirtualHid)
#include "tst_virtualhid.moc"
