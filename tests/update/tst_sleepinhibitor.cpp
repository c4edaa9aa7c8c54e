#include "tests/support/mocklogind.h"
#include "tests/support/scriptedunit.h"
#include "tests/support/testwindow.h"
#include "tests/support/texts.h"
#include "update/sleepinhibitor.h"

#include <QLocalServer>
#include <QThreadPool>
#include <QtTest>

namespace {

const QStringList held{"sleep:idle|Talvex updater|A unit's firmware is being updated.|block"};

} // namespace

class TestSleepInhibitor : public QObject
{
    Q_OBJECT

private slots:
    void cleanup()
    {
        sleepinhibitor::release();
        QThreadPool::globalInstance()->waitForDone();
    }

    void heldOnceAndReleased()
    {
        const MockLogind logind;
        QVERIFY2(logind.isReady(), "needs the packages dbus and python3-dbusmock");
        sleepinhibitor::hold();
        sleepinhibitor::hold();
        QTRY_COMPARE(logind.inhibitors(), held);
        QThreadPool::globalInstance()->waitForDone();
        QCOMPARE(logind.inhibitors(), held);
        sleepinhibitor::release();
        sleepinhibitor::release();
        QTRY_COMPARE(logind.inhibitors(), QStringList());
        sleepinhibitor::hold();
        QTRY_COMPARE(logind.inhibitors(), held);
    }

    void releasedBeforeLogindAnswers()
    {
        const MockLogind logind;
        QVERIFY(logind.isReady());
        sleepinhibitor::hold();
        sleepinhibitor::release();
        QThreadPool::globalInstance()->waitForDone(); // the answer is there now, and unwanted
        QTRY_COMPARE(logind.inhibitors(), QStringList());
    }

    void endsOfAnUpdate_data()
    {
        QTest::addColumn<int>("status");
        QTest::newRow("unit timed out") << 0xA0;
        QTest::newRow("packets skipped") << 0xB0;
        QTest::newRow("request not written") << -1;
        QTest::newRow("wrong digest") << 0xC0;
        QTest::newRow("rejected") << 0x70;
        QTest::newRow("finished") << 0xF0;
    }
    void endsOfAnUpdate()
    {
        QFETCH(const int, status);
        const MockLogind logind;
        QVERIFY(logind.isReady());
        TestWindow window;
        placeServiceFile(QByteArray(12000, 'i')); // so that the stream takes its time
        const auto unit = ScriptedUnit::plugIn(UNIT_HB4);
        unit->sayStatus(0);
        window.button("connect_button").click();
        QCOMPARE(logind.inhibitors(), QStringList());
        virtualbus::failNextWrites(unit->number, status < 0 ? 1 : 0);
        QStringList underTheBox{"no box"};
        window.boxes.whileOpen = [&](QMessageBox&) {
            (void)QTest::qWaitFor([&] { return logind.inhibitors().isEmpty(); }, limits::hangMs());
            underTheBox = logind.inhibitors();
        };
        window.button("updateDeviceButton").click();
        if (status >= 0) {
            QTRY_COMPARE(logind.inhibitors(), held); // while the answer to the request is awaited
            if (status != 0xA0 && status != 0xB0) {
                unit->sayStatus(0x90);
                QTRY_VERIFY(virtualbus::writesTo(unit->number).size() > 2);
                QCOMPARE(logind.inhibitors(), held); // in the stream
                QTRY_COMPARE(virtualbus::callsOf("hid_read_timeout").back().timeout.value(), 100);
                unit->sayStatus(0xE0);
                QTRY_COMPARE(window.label("labelUpdate").text(), QString(text::updateInProgress));
                QCOMPARE(logind.inhibitors(), held); // while the unit installs
            }
            unit->sayStatus(static_cast<std::uint8_t>(status));
        }
        QTRY_COMPARE(underTheBox, QStringList()); // the box that tells of the end finds the lock released
    }

    void secondPressEndsTheUpdate()
    {
        const MockLogind logind;
        QVERIFY(logind.isReady());
        TestWindow window;
        placeServiceFile();
        const auto unit = ScriptedUnit::plugIn(UNIT_HB4);
        unit->sayStatus(0);
        window.button("connect_button").click();
        window.button("updateDeviceButton").click();
        QTRY_COMPARE(logind.inhibitors(), held);
        window->updateDevice();
        QTRY_COMPARE(logind.inhibitors(), QStringList());
    }

    void noImageNoLock()
    {
        const MockLogind logind;
        QVERIFY(logind.isReady());
        TestWindow window; // whose box is answered
        window->updateDevice();
        QThreadPool::globalInstance()->waitForDone();
        QCOMPARE(logind.inhibitors(), QStringList());
    }

    void withoutABusALineIsWritten()
    {
        QVERIFY(!QFile::exists(MockLogind::busPath()));
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression("^The computer may go to sleep: .+"));
        sleepinhibitor::hold();
        QThreadPool::globalInstance()->waitForDone();
    }

    void aSilentBusHoldsNothingUp()
    {
        auto silent = std::make_unique<QLocalServer>();
        QVERIFY(silent->listen(MockLogind::busPath()));
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression("^The computer may go to sleep: .+"));
        sleepinhibitor::hold();
        sleepinhibitor::release();
        QCOMPARE(QThreadPool::globalInstance()->activeThreadCount(), 1); // which alone waits for the bus
        QTRY_VERIFY(silent->hasPendingConnections());
        silent.reset(); // ends the wait of the thread behind it
        QThreadPool::globalInstance()->waitForDone();
    }
};

QTEST_MAIN(TestSleepInhibitor)
#include "tst_sleepinhibitor.moc"
