#include "tests/support/boxlines.h"
#include "tests/support/testwindow.h"
#include "tests/support/transferdesk.h"
#include "virtualunit/hidapi/virtualbus.h"

#include <QtTest>

using virtualunit::Fault;

namespace {

int plugIn(UnitType type, std::optional<Fault> fault = {}, int argument = 0)
{
    virtualunit::Options options;
    options.type = type;
    options.periodMs =
        0; // it speaks when it has something to say, so a window that comes late misses nothing
    if (fault)
        options.faults.add(*fault, argument);
    return virtualbus::attach(options);
}

void click(TestWindow& window, const char* name)
{
    QTest::mouseClick(&window.button(name), Qt::LeftButton);
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
    void everyPair_data();
    void everyPair();
    void everyLength_data();
    void everyLength();
    void fault_data();
    void fault();
};

void TestUpdateRoad::everyModel_data()
{
    QTest::addColumn<int>("type");
    for (const UnitModel& model : unitModels)
        if (model.pairMessage == nullptr)
            QTest::newRow(model.connectedMessage) << static_cast<int>(model.type);
}

void TestUpdateRoad::everyModel()
{
    QFETCH(int, type);
    const QByteArray image = imageOf(1000);
    placeServiceFile(image);
    TestWindow window;
    const int unit = plugIn(static_cast<UnitType>(type));
    click(window, "connect_button");
    QVERIFY(window.button("updateDeviceButton").isEnabled());
    QVERIFY(quits([&] { click(window, "updateDeviceButton"); }));
    QCOMPARE(window.boxes.lines(),
             (QStringList{informationBox(unitModels.at(static_cast<std::size_t>(type)).connectedMessage),
                          boxline::finished}));
    QVERIFY(hasInstalled(unit, image));
    QCOMPARE(window.label("labelTransfer").text(), QString("Transfer: completed"));
    QCOMPARE(window.label("labelUpdate").text(), QString("Update: finished"));
}

void TestUpdateRoad::everyPair_data()
{
    QTest::addColumn<int>("left");
    QTest::addColumn<QString>("message");
    QTest::newRow("TRK300") << int{UNIT_TRK300_LEFT} << "TRK300 connected";
    QTest::newRow("TRK900") << int{UNIT_TRK900_LEFT} << "TRK900 connected";
}

void TestUpdateRoad::everyPair()
{
    QFETCH(int, left);
    QFETCH(QString, message);
    const QByteArray image = imageOf(1000);
    placeServiceFile(image);
    TestWindow window;
    const int leftDeck = plugIn(static_cast<UnitType>(left));
    const int rightDeck = plugIn(static_cast<UnitType>(left + 1));
    click(window, "connect_button");
    QVERIFY(quits([&] { click(window, "updateDeviceButton"); }));
    QCOMPARE(window.boxes.lines(), (QStringList{informationBox(message), boxline::finished}));
    QVERIFY(hasInstalled(leftDeck, image));
    QVERIFY(hasInstalled(rightDeck, image));
}

void TestUpdateRoad::everyLength_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<int>("size");
    for (const int size : {1, 59, 60, 61, 120, 20000}) {
        QTest::addRow("older family, %d bytes", size) << int{UNIT_HB4} << size;
        QTest::addRow("player, %d bytes", size) << int{UNIT_PLT65} << size;
    }
}

void TestUpdateRoad::everyLength()
{
    QFETCH(int, type);
    QFETCH(int, size);
    const QByteArray image = imageOf(size);
    placeServiceFile(image);
    TestWindow window;
    const int unit = plugIn(static_cast<UnitType>(type));
    click(window, "connect_button");
    QVERIFY(quits([&] { click(window, "updateDeviceButton"); }));
    QVERIFY(hasInstalled(unit, image));
}

void TestUpdateRoad::fault_data()
{
    QTest::addColumn<int>("fault");
    QTest::addColumn<int>("argument");
    QTest::addColumn<QStringList>("boxes");
    QTest::addColumn<QString>("transfer");
    QTest::addColumn<QString>("update");
    const auto add = [](const char* name, Fault fault, int argument, const QStringList& boxes,
                        const char* transfer, const char* update) {
        QTest::newRow(name) << static_cast<int>(fault) << argument << boxes << transfer << update;
    };
    const char* const inProgress = "Transfer: in progress";
    const char* const installing = "Update: in progress. Do not power off device!";
    add("timed out", Fault::RefusesTimeout, 0, {boxline::timedOut}, "Transfer:", "Update:");
    add("packets skipped", Fault::RefusesSkipped, 0, {boxline::skipped}, "Transfer:", "Update:");
    add("takes nothing", Fault::TakesNothing, 0, {boxline::noRequest}, "Transfer:", "Update:");
    add("never answers", Fault::NeverAnswers, 0, {}, "Transfer:", "Update:");
    add("loses a packet", Fault::LosesPacket, 5, {boxline::wrongDigest}, inProgress, "Update:");
    add("wrong digest", Fault::WrongDigest, 0, {boxline::wrongDigest}, inProgress, "Update:");
    add("rejects the image", Fault::RejectsImage, 0, {boxline::rejected}, inProgress, "Update:");
    add("installation fails", Fault::InstallationFails, 0, {boxline::rejected}, "Transfer: completed",
        installing);
    add("silent installation", Fault::SilentInstallation, 0, {}, "Transfer: completed", installing);
    add("unplugged in the stream", Fault::UnpluggedAt, 5, {}, inProgress, "Update:");
}

/// Each trouble is told once, and the program stays open.
void TestUpdateRoad::fault()
{
    QFETCH(int, fault);
    QFETCH(int, argument);
    QFETCH(QStringList, boxes);
    QFETCH(QString, transfer);
    QFETCH(QString, update);
    placeServiceFile(imageOf(1000));
    TestWindow window;
    plugIn(UNIT_HB4, static_cast<Fault>(fault), argument);
    click(window, "connect_button");
    const QStringList expected = QStringList{informationBox("HB4 connected")} + boxes;
    QVERIFY(runsOn([&] { click(window, "updateDeviceButton"); },
                   [&] {
                       return window.boxes.lines().size() >= expected.size() &&
                              window.boxes.openCount() == 0 &&
                              window.label("labelTransfer").text() == transfer &&
                              window.label("labelUpdate").text() == update;
                   }));
    QCOMPARE(window.boxes.lines(), expected);
    QVERIFY(!window.button("updateDeviceButton").isEnabled());
}

QTEST_MAIN(TestUpdateRoad)
#include "tst_updateroad.moc"
