#include "tests/support/boxlines.h"
#include "tests/support/testwindow.h"
#include "tests/support/texts.h"
#include "tests/support/transferdesk.h"
#include "virtualunit/hidapi/virtualbus.h"

#include <QtTest>

namespace {

int plugIn(UnitType type)
{
    virtualunit::Options options;
    options.type = type;
    options.periodMs =
        0; // it speaks when it has something to say, so a window that comes late misses nothing
    return virtualbus::attach(options);
}

/// Whether the unit got every byte, as the wire format wants it, and installed the image.
bool hasInstalled(int unit, const QByteArray& image)
{
    const virtualbus::UnitView view = virtualbus::unit(unit);
    for (const std::string& error : view.errors)
        qWarning("unit %d: %s", unit, error.c_str());
    return view.errors.empty() && view.verdict == virtualunit::Verdict::Installed &&
           std::ranges::equal(view.image, image, [](std::uint8_t a, char b) { return a == std::uint8_t(b); });
}

} // namespace

/// From Connect to the end, against units that check every bit of what they are sent.
class TestUpdateRoad : public QObject
{
    Q_OBJECT

private slots:
    void everyModel_data();
    void everyModel();
    void everyLength_data();
    void everyLength();
};

void TestUpdateRoad::everyModel_data()
{
    QTest::addColumn<QString>("message");
    for (const models::Connection& connection : models::connections())
        QTest::newRow(connection.name) << connection.message();
}

void TestUpdateRoad::everyModel()
{
    QFETCH(QString, message);
    const QByteArray image = imageOf(1000);
    placeServiceFile(image);
    TestWindow window;
    QList<int> units;
    for (const models::Model& model : models::connectionOf(QTest::currentDataTag()).units)
        units += plugIn(model.type);
    window.press("connect_button");
    QVERIFY(window.button("updateDeviceButton").isEnabled());
    QVERIFY(quits([&] { window.press("updateDeviceButton"); }));
    QCOMPARE(window.boxes.lines(), (QStringList{infoBox(message).line(), boxline::finished}));
    for (const int unit : qAsConst(units))
        QVERIFY(hasInstalled(unit, image));
    QCOMPARE(window.label("labelTransfer").text(), QString(text::transferCompleted));
    QCOMPARE(window.label("labelUpdate").text(), QString(text::updateFinished));
}

void TestUpdateRoad::everyLength_data()
{
    QTest::addColumn<UnitType>("type");
    QTest::addColumn<int>("size");
    for (const int size : {1, 59, 60, 61, 120, 20000}) {
        QTest::addRow("older family, %d bytes", size) << UNIT_HB4 << size;
        QTest::addRow("player, %d bytes", size) << UNIT_PLT65 << size;
    }
}

void TestUpdateRoad::everyLength()
{
    QFETCH(UnitType, type);
    QFETCH(int, size);
    const QByteArray image = imageOf(size);
    placeServiceFile(image);
    TestWindow window;
    const int unit = plugIn(type);
    window.press("connect_button");
    QVERIFY(quits([&] { window.press("updateDeviceButton"); }));
    QVERIFY(hasInstalled(unit, image));
}

QTEST_MAIN(TestUpdateRoad)
#include "tst_updateroad.moc"
