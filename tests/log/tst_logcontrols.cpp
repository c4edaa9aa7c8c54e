#include "log/logdownloader.h"
#include "net/updatechecker.h"
#include "tests/support/boxlines.h"
#include "tests/support/inside.h"
#include "tests/support/rows.h"
#include "tests/support/scriptedunit.h"
#include "tests/support/silentserver.h"
#include "tests/support/testwindow.h"
#include "ui/mainwindow.h"

#include <QSignalSpy>
#include <QThread>
#include <QtTest>

#include <hidapi.h>

namespace {

/// Attaches a single unit and opens it for the window, as a press of Connect does.
void connectUnit(TestWindow& window)
{
    window.state().device = ScriptedUnit::plugIn(UNIT_HB4)->opened();
    window.downloader().setDevice(window.state().device, UNIT_HB4);
}

} // namespace

class TestLogControls : public QObject
{
    Q_OBJECT

private slots:
    void theKeyShowsTheButton_data()
    {
        const Rows<bool, int, bool, bool, bool> row("connected", "decks", "updateBegun", "logBegun", "shown");
        row("before a unit is connected", false, 1, false, false, false);
        row("single unit", true, 1, false, false, true);
        row("pair of decks", true, 2, false, false, false);
        row("update begun", true, 1, true, false, false);
        row("log begun", true, 1, false, true, false);
    }
    void theKeyShowsTheButton()
    {
        QFETCH(const bool, connected);
        QFETCH(const int, decks);
        QFETCH(const bool, updateBegun);
        QFETCH(const bool, logBegun);
        QFETCH(const bool, shown);
        TestWindow window;
        if (connected)
            connectUnit(window);
        window.state().deckCount = static_cast<std::uint8_t>(decks);
        window.state().updateBegun = updateBegun;
        window.button("stopDownloadingFile").setVisible(logBegun);
        QVERIFY(!window.button("downloadLogFile").isVisible());
        window.pressLogKey();
        QCOMPARE(window.button("downloadLogFile").isVisible(), shown);
        QCOMPARE(window.button("downloadLogFile").isEnabled(), shown);
    }

    void theKeyDoesNothingWhileAnAnswerIsAwaited()
    {
        const SilentServer silent;
        TestWindow window;
        connectUnit(window);
        inside::of(window.checker()).binUrl = silent.address() + "/image";
        window.checker().onNeedDownloadNewFirmware();
        window.pressLogKey();
        QVERIFY(!window.button("downloadLogFile").isVisible());
        QObject::disconnect(&window.checker(), nullptr, &*window, nullptr);
        inside::of(window.checker()).reply->abort(); // an end of the request, good or bad
        window.pressLogKey();
        QVERIFY(window.button("downloadLogFile").isVisible());
    }

    void theKeyDoesNothingOnceUpdateDeviceWasPressed()
    {
        TestWindow window;
        connectUnit(window);
        placeFile(filename::image, "image");
        window.button("updateDeviceButton").setEnabled(true);
        window.button("updateDeviceButton").click();
        window.pressLogKey();
        QVERIFY(!window.button("downloadLogFile").isVisible());
    }

    void otherKeysShowNothing_data()
    {
        const Rows<int, int> row("key", "modifiers");
        row("L", Qt::Key_L, Qt::NoModifier);
        row("Ctrl+L", Qt::Key_L, Qt::ControlModifier);
        row("Shift+L", Qt::Key_L, Qt::ShiftModifier);
        row("Ctrl+Alt+Shift+L", Qt::Key_L, Qt::ControlModifier | Qt::ShiftModifier | Qt::AltModifier);
        row("Ctrl+Shift+K", Qt::Key_K, Qt::ControlModifier | Qt::ShiftModifier);
    }
    void otherKeysShowNothing()
    {
        QFETCH(const int, key);
        QFETCH(const int, modifiers);
        TestWindow window;
        connectUnit(window);
        QTest::keyClick(&*window, static_cast<Qt::Key>(key), static_cast<Qt::KeyboardModifiers>(modifiers));
        QVERIFY(!window.button("downloadLogFile").isVisible());
    }

    /// The next two are one run of the program: one request, one closing box, whatever is pressed.
    void aSecondPressChangesTheButtonsAndSendsNothing()
    {
        TestWindow window;
        connectUnit(window);
        window.button("updateDeviceButton").setEnabled(true);
        for (int press = 0; press < 2; ++press) {
            window.pressLogKey();
            QVERIFY(QMetaObject::invokeMethod(&*window, "on_downloadLogFile_pressed"));
            QVERIFY(window.button("stopDownloadingFile").isVisible());
            QVERIFY(window.button("stopDownloadingFile").isEnabled());
            QVERIFY(!window.button("downloadLogFile").isEnabled());
            QVERIFY(!window.button("updateDeviceButton").isEnabled());
            window.button("stopDownloadingFile").setEnabled(false);
            window.button("downloadLogFile").setEnabled(true);
        }
        QCOMPARE(virtualbus::writesTo(1).size(), std::size_t{1});
        QCOMPARE(int(virtualbus::writesTo(1).front()[2]), 1); // the number asked for
        window->leftovers().worker->requestInterruption();    // it awaits the header
        virtualbus::clear();
    }

    void stopShowsTheClosingBoxOnce()
    {
        TestWindow window;
        connectUnit(window);
        window.button("stopDownloadingFile").show();
        window.bar("progressBarTransfer").setValue(40);
        QSignalSpy finished(&window.downloader(), SIGNAL(logDownloadFinished()));
        window.boxes.whileOpen = [&window](QMessageBox&) {
            QVERIFY(!window.button("stopDownloadingFile").isEnabled());
            QVERIFY(window.button("updateDeviceButton").isEnabled());
            QCOMPARE(window.bar("progressBarTransfer").value(), 0);
        };
        QVERIFY(quits([&window] { QMetaObject::invokeMethod(&*window, "on_stopDownloadingFile_pressed"); }));
        QCOMPARE(finished.size(), 2);
        window->onLogDownloadFinished();
        QCOMPARE(window.boxes.lines(), QStringList{boxline::logComplete});
        QVERIFY(window.boxes.seen().front().hasParent);
    }

    void theWindowsRelayReachesTheDownloader()
    {
        TestWindow window;
        connectUnit(window);
        QSignalSpy relayed(&*window, SIGNAL(needDataCompleted(int)));
        window->dataCompleted(1);
        QCOMPARE(relayed.value(0), QVariantList({1}));
        QTRY_COMPARE(virtualbus::writesTo(1).size(), std::size_t{1});
        QCOMPARE(int(virtualbus::writesTo(1).front()[1]), 0x30);
    }

    void theUnusedHookAcknowledgesOnce()
    {
        TestWindow window;
        connectUnit(window);
        QVERIFY(!window.state().logAckPending);
        window->timerSlot();
        QCOMPARE(virtualbus::writesTo(1).size(), std::size_t{0});
        window.state().logAckPending = true;
        window->timerSlot();
        window->timerSlot();
        QCOMPARE(virtualbus::writesTo(1).size(), std::size_t{1});
        QVERIFY(!window.state().logAckPending);
    }

    void progressBeyond100LeavesTheBar()
    {
        TestWindow window;
        emit window.downloader().logDownloadProgress(66);
        emit window.downloader().logDownloadProgress(150);
        QTRY_COMPARE(window.bar("progressBarTransfer").value(), 66);
    }
};

QTEST_MAIN(TestLogControls)
#include "tst_logcontrols.moc"
