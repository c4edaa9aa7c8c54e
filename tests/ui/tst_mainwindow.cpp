#include "log/logdownloader.h"
#include "net/updatechecker.h"
#include "tests/support/testwindow.h"
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
    void widget_data();
    void widget();
    void widgetsAreThese();
    void buttonRow();
    void startingState_data();
    void startingState();
    void translatedTexts();
    void onlyConnectResponds();
    void logWorker();
    void handsOverWhatItLeaves();
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
    QVERIFY(window->updateChecker != nullptr);
    QVERIFY(window->logDownloader != nullptr);
    QCOMPARE(window->updaterFile.fileName(), QCoreApplication::applicationDirPath() + "/updater.sb");
    QVERIFY(!window->updaterFile.isOpen());
    QVERIFY(window->firmwareData.isEmpty());
    QCOMPARE(window->transferStarted, 0);
    QCOMPARE(window->applyingPhase, 0);
    QCOMPARE(window->requestSent, 0);
    QCOMPARE(window->updateSize, 1);
    QCOMPARE(window->packetNumber, 0);
    QCOMPARE(window->fakeProgressActive, 0);
    QCOMPARE(window->device, static_cast<hid_device*>(nullptr));
    QCOMPARE(window->secondDevice, static_cast<hid_device*>(nullptr));
    QVERIFY(window->pendingDeckInfo != nullptr);
    QCOMPARE(window->pendingDeckInfo->path, static_cast<char*>(nullptr));
    QCOMPARE(int{window->deckCount}, 1);
    QVERIFY(!window->firstDeckSeen);
    QCOMPARE(window->reserveBlock.size(), std::size_t{25});
    QVERIFY(std::ranges::all_of(window->reserveBlock, [](unsigned char byte) { return byte == 0; }));
    QVERIFY(!window->logAckPending);
    QCOMPARE(virtualbus::calls().size(), std::size_t{0}); // nothing is contacted before Connect is pressed
    QVERIFY(!window->updateChecker->isBusy());
}

void TestMainWindow::firmwareFileIsBesideTheProgram()
{
    const QString before = QDir::currentPath();
    const QTemporaryDir elsewhere;
    QVERIFY(QDir::setCurrent(elsewhere.path()));
    TestWindow window;
    QVERIFY(QDir::setCurrent(before));
    QCOMPARE(window->updaterFile.fileName(), QCoreApplication::applicationDirPath() + "/updater.sb");
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

void TestMainWindow::widget_data()
{
    const QRect fromTheLayout;
    QTest::addColumn<QByteArray>("type");
    QTest::addColumn<QString>("parent");
    QTest::addColumn<QRect>("geometry");
    QTest::addColumn<QString>("whatsThis");
    const QByteArray bar = "QProgressBar";
    const QByteArray button = "QPushButton";
    const QByteArray label = "QLabel";
    const QString centre = "centralWidget";
    QTest::newRow("centralWidget") << QByteArray("QWidget") << "MainWindow" << fromTheLayout << "";
    QTest::newRow("progressBarTransfer") << bar << centre << QRect(20, 160, 451, 21) << "Transfer progress";
    QTest::newRow("progressBarUpdate") << bar << centre << QRect(20, 260, 451, 21) << "";
    QTest::newRow("layoutWidget") << QByteArray("QWidget") << centre << QRect(10, 410, 471, 32) << "";
    QTest::newRow("connect_button") << button << "layoutWidget" << fromTheLayout << "";
    QTest::newRow("updateDeviceButton") << button << "layoutWidget" << fromTheLayout << "";
    QTest::newRow("labelTransfer") << label << centre << QRect(20, 120, 411, 16) << "";
    QTest::newRow("labelUpdate") << label << centre << QRect(20, 230, 411, 16) << "";
    QTest::newRow("downloadLogFile") << button << centre << QRect(250, 380, 231, 23) << "";
    QTest::newRow("stopDownloadingFile") << button << centre << QRect(250, 350, 231, 23) << "";
}

void TestMainWindow::widget()
{
    QFETCH(QByteArray, type);
    QFETCH(QString, parent);
    QFETCH(QRect, geometry);
    QFETCH(QString, whatsThis);
    TestWindow window;
    const auto found = window->findChildren<QWidget*>(QTest::currentDataTag());
    QCOMPARE(found.size(), 1);
    QCOMPARE(QByteArray(found.front()->metaObject()->className()), type);
    QCOMPARE(found.front()->parentWidget()->objectName(), parent);
    QCOMPARE(found.front()->whatsThis(), whatsThis);
    if (geometry.isValid())
        QCOMPARE(found.front()->geometry(), geometry);
}

void TestMainWindow::widgetsAreThese()
{
    TestWindow window;
    QStringList names;
    const auto widgets = window->centralWidget()->findChildren<QWidget*>();
    for (const QWidget* widget : widgets)
        names += widget->objectName();
    names.sort();
    QCOMPARE(names, (QStringList{"connect_button", "downloadLogFile", "labelTransfer", "labelUpdate",
                                 "layoutWidget", "progressBarTransfer", "progressBarUpdate",
                                 "stopDownloadingFile", "updateDeviceButton"}));
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

void TestMainWindow::startingState_data()
{
    QTest::addColumn<bool>("enabled");
    QTest::addColumn<bool>("visible");
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("value");
    constexpr int none = -1;
    QTest::newRow("connect_button") << true << true << "Connect" << none;
    QTest::newRow("updateDeviceButton") << false << true << "Update Device" << none;
    QTest::newRow("labelTransfer") << false << true << "Transfer:" << none;
    QTest::newRow("labelUpdate") << false << true << "Update:" << none;
    QTest::newRow("progressBarTransfer") << false << true << "0%" << 0;
    QTest::newRow("progressBarUpdate") << false << true << "0%" << 0;
    QTest::newRow("downloadLogFile") << false << false << "Download log file" << none;
    QTest::newRow("stopDownloadingFile") << true << false << "Stop downloading log file" << none;
}

void TestMainWindow::startingState()
{
    QFETCH(bool, enabled);
    QFETCH(bool, visible);
    QFETCH(QString, text);
    QFETCH(int, value);
    TestWindow window;
    const auto* widget = window->findChild<QWidget*>(QTest::currentDataTag());
    QVERIFY(widget != nullptr);
    QCOMPARE(widget->isEnabled(), enabled);
    QCOMPARE(widget->isVisible(), visible);
    QCOMPARE(widget->property("text").toString(), text);
    if (value >= 0)
        QCOMPARE(widget->property("value").toInt(), value);
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
    QCOMPARE(window.label("labelTransfer").text(), QString("Transfer:")); // the constructor's, not translated
}

void TestMainWindow::onlyConnectResponds()
{
    TestWindow window;
    const QStringList before = window.controls();
    QTest::mouseClick(&window.button("updateDeviceButton"), Qt::LeftButton);
    QTest::mouseClick(&window.button("downloadLogFile"), Qt::LeftButton);
    QTest::keyClick(&*window, Qt::Key_L,
                    Qt::ControlModifier | Qt::ShiftModifier); // offers no log without a unit
    QCOMPARE(window.controls(), before);
    QCOMPARE(window.boxes.lines(), QStringList{});
    QCOMPARE(virtualbus::calls().size(), std::size_t{0});
    QTest::mouseClick(&window.button("connect_button"), Qt::LeftButton);
    QCOMPARE(window.boxes.lines().size(), 1);
}

void TestMainWindow::logWorker()
{
    TestWindow window;
    QThread* const worker = window->logDownloader->thread();
    QVERIFY(worker != window->thread());
    QVERIFY(worker->isRunning());
    QCOMPARE(worker->priority(), QThread::InheritPriority);
    QVERIFY(worker->parent() == nullptr);
    QVERIFY(window->logDownloader->parent() == nullptr);
    QVERIFY(window->updateChecker->parent() == nullptr);
    QCOMPARE(window->updateChecker->thread(), window->thread());
}

void TestMainWindow::handsOverWhatItLeaves()
{
    TestWindow window;
    const MainWindow::Leftovers left = window->leftovers();
    QCOMPARE(left.worker, window->logDownloader->thread());
    QCOMPARE(left.checker, window->updateChecker);
}

void TestMainWindow::leavesWhatLivesToTheEnd()
{
    virtualbus::clear();
    auto window = std::make_unique<MainWindow>();
    const QPointer<QObject> checker = window->updateChecker;
    const QPointer<LogDownloader> downloader = window->logDownloader;
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
