#include "log/logdownloader.h"
#include "net/updatechecker.h"
#include "tests/support/testwindow.h"
#include "tests/support/windowtables.h"
#include "virtualunit/hidapi/virtualbus.h"

#include <QDir>
#include <QHBoxLayout>
#include <QMenuBar>
#include <QPointer>
#include <QStatusBar>
#include <QTemporaryDir>
#include <QThread>
#include <QToolBar>
#include <QtTest>

#include <hidapi.h>

#include <algorithm>

class TestMainWindow : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void members();
    void firmwareFileIsBesideTheProgram();
    void window();
    void control_data();
    void control();
    void controlsAreThese();
    void buttonRow();
    void translatedTexts();
    void onlyConnectResponds();
    void logWorker();
    void leavesWhatLivesToTheEnd();
    void closedInTheMomentInWhichABoxOpens();
};

/// The screen that is none has a font too large for the layout as it is; a desktop's usual one is this.
void TestMainWindow::initTestCase()
{
    QApplication::setFont(QFont("Sans Serif", 9));
}

void TestMainWindow::members()
{
    TestWindow window;
    QVERIFY(!window.state().updaterFile.isOpen());
    QVERIFY(window.state().firmwareData.isEmpty());
    QCOMPARE(window.state().transferStarted, 0);
    QCOMPARE(window.state().applyingPhase, 0);
    QCOMPARE(window.state().requestSent, 0);
    QCOMPARE(window.state().updateSize, 1);
    QCOMPARE(window.state().packetNumber, 0);
    QCOMPARE(window.state().fakeProgressActive, 0);
    QCOMPARE(window.state().device, static_cast<hid_device*>(nullptr));
    QCOMPARE(window.state().secondDevice, static_cast<hid_device*>(nullptr));
    QVERIFY(window.state().pendingDeckInfo != nullptr);
    QCOMPARE(window.state().pendingDeckInfo->path, static_cast<char*>(nullptr));
    QCOMPARE(int{window.state().deckCount}, 1);
    QVERIFY(!window.state().firstDeckSeen);
    QCOMPARE(window.state().reserveBlock.size(), std::size_t{25});
    QVERIFY(std::ranges::all_of(window.state().reserveBlock, [](unsigned char byte) { return byte == 0; }));
    QVERIFY(!window.state().logAckPending);
    QCOMPARE(virtualbus::calls().size(), std::size_t{0}); // nothing is contacted before Connect is pressed
    QVERIFY(!window.checker().isBusy());
}

void TestMainWindow::firmwareFileIsBesideTheProgram()
{
    const QString before = QDir::currentPath();
    const QTemporaryDir elsewhere;
    QVERIFY(QDir::setCurrent(elsewhere.path()));
    TestWindow window;
    QVERIFY(QDir::setCurrent(before));
    QCOMPARE(window.state().updaterFile.fileName(),
             QCoreApplication::applicationDirPath() + '/' + filename::image);
}

void TestMainWindow::window()
{
    TestWindow window;
    QCOMPARE(window->objectName(), QString("MainWindow"));
    QCOMPARE(window->size(), QSize(488, 440));
    QCOMPARE(window->windowTitle(), QString("Talvex updater"));
    QVERIFY(window->parentWidget() == nullptr);
    QVERIFY(window->findChild<QMenuBar*>() == nullptr);
    QVERIFY(window->findChild<QStatusBar*>() == nullptr);
    QVERIFY(window->findChild<QToolBar*>() == nullptr);
}

void TestMainWindow::control_data()
{
    QTest::addColumn<QString>("name");
    for (const windowtable::Control& control : windowtable::controls())
        QTest::newRow(control.name) << control.name;
}

void TestMainWindow::control()
{
    QFETCH(QString, name);
    const windowtable::Control& expected = windowtable::control(name);
    TestWindow window;
    const auto found = window->findChildren<QWidget*>(name);
    QCOMPARE(found.size(), 1);
    const QWidget& control = *found.front();
    QCOMPARE(control.metaObject()->className(), expected.type);
    QCOMPARE(control.parentWidget()->objectName(), QString(expected.parent));
    QCOMPARE(control.whatsThis(), QString(expected.whatsThis));
    if (!expected.geometry.isNull())
        QCOMPARE(control.geometry(), expected.geometry);
    QCOMPARE(control.isEnabled(), expected.enabled);
    QCOMPARE(control.isVisible(), expected.visible);
    QCOMPARE(control.property("text").toString(), QString(expected.text));
    if (qobject_cast<const QProgressBar*>(&control) != nullptr)
        QCOMPARE(control.property("value").toInt(), 0);
}

void TestMainWindow::controlsAreThese()
{
    TestWindow window;
    QStringList names{window->centralWidget()->objectName()};
    const auto widgets = window->centralWidget()->findChildren<QWidget*>();
    for (const QWidget* widget : widgets)
        names += widget->objectName();
    names.sort();
    QCOMPARE(names, windowtable::controlNames());
}

void TestMainWindow::buttonRow()
{
    TestWindow window;
    const auto* row = window->findChild<QHBoxLayout*>("horizontalLayout");
    QVERIFY(row != nullptr);
    QCOMPARE(row->parentWidget()->objectName(), QString("layoutWidget"));
    QCOMPARE(row->spacing(), 6);
    QCOMPARE(row->contentsMargins(), QMargins(0, 0, 0, 0));
    QCOMPARE(row->count(), 2);
    QCOMPARE(row->itemAt(0)->widget(), &window.button("connect_button"));
    QCOMPARE(row->itemAt(1)->widget(), &window.button("updateDeviceButton"));
}

/// What the layout gives is looked up for translation in the window's own context.
void TestMainWindow::translatedTexts()
{
    class Upper : public QTranslator
    {
    public:
        [[nodiscard]] bool isEmpty() const override { return false; }
        QString translate(const char* context, const char* text, const char*, int) const override
        {
            return qstrcmp(context, "MainWindow") == 0 ? QString(text).toUpper() : QString();
        }
    };
    Upper translator;
    QVERIFY(QCoreApplication::installTranslator(&translator));
    TestWindow window;
    QCOMPARE(window.button("connect_button").text(), QString("CONNECT"));
    QCOMPARE(window.button("downloadLogFile").text(), QString("DOWNLOAD LOG FILE"));
    QCOMPARE(window.bar("progressBarTransfer").whatsThis(), QString("TRANSFER PROGRESS"));
    QCOMPARE(window->windowTitle(), QString("TALVEX UPDATER"));
    QCOMPARE(window.label("labelTransfer").text(),
             QString(text::transferIdle)); // the constructor's, not translated
}

void TestMainWindow::onlyConnectResponds()
{
    TestWindow window;
    const QStringList before = window.controls();
    window.press("updateDeviceButton");
    window.press("downloadLogFile");
    window.pressLogKey(); // offers no log without a unit
    QCOMPARE(window.controls(), before);
    QCOMPARE(window.boxes.lines(), QStringList{});
    QCOMPARE(virtualbus::calls().size(), std::size_t{0});
    window.press("connect_button");
    QCOMPARE(window.boxes.lines().size(), 1);
}

void TestMainWindow::logWorker()
{
    TestWindow window;
    QThread* const worker = window.downloader().thread();
    QCOMPARE(window->leftovers().worker, worker);
    QVERIFY(worker != window->thread());
    QVERIFY(worker->isRunning());
    QCOMPARE(worker->priority(), QThread::InheritPriority);
    QVERIFY(worker->parent() == nullptr);
    QVERIFY(window.downloader().parent() == nullptr);
    QVERIFY(window.checker().parent() == nullptr);
    QCOMPARE(window.checker().thread(), window->thread());
}

void TestMainWindow::leavesWhatLivesToTheEnd()
{
    virtualbus::clear();
    auto window = std::make_unique<MainWindow>();
    const QPointer<QObject> checker = window->leftovers().checker;
    const QPointer<LogDownloader> downloader = &inside::of(*window).logDownloader;
    const QPointer<QThread> worker = window->leftovers().worker;
    const QPointer<QObject> button = window->findChild<QPushButton*>("connect_button");
    window.reset();
    QVERIFY(button.isNull());
    QVERIFY(!checker.isNull());
    QVERIFY(!downloader.isNull());
    QVERIFY(!worker.isNull());
    QVERIFY(worker->isRunning());
    QCOMPARE(virtualbus::callsOf("hid_close").size(), std::size_t{0});
    worker->quit();
    QVERIFY(worker->wait(QDeadlineTimer(limits::hang())));
    delete downloader;
    delete worker;
    delete checker;
}

/// Nobody answers the box: the program ends all the same.
void TestMainWindow::closedInTheMomentInWhichABoxOpens()
{
    TestWindow window;
    window.boxes.leaveOpen();
    QVERIFY(quits([&] {
        QMetaObject::invokeMethod(
            &*window, [&] { QMessageBox::information(&*window, "Info", "late"); }, Qt::QueuedConnection);
        window->close();
    }));
}

QTEST_MAIN(TestMainWindow)
#include "tst_mainwindow.moc"
