#include "log/logdownloader.h"
#include "net/updatechecker.h"
#include "tests/support/testwindow.h"

#include <QMetaMethod>
#include <QThread>
#include <QtTest>

namespace {

/// An end of a connection: an object of the program by the name it has in the rows.
QObject* find(TestWindow& window, const QString& name)
{
    if (name == "window")
        return &*window;
    if (name == "updateChecker")
        return window->updateChecker;
    if (name == "logDownloader")
        return window->logDownloader;
    if (name == "worker")
        return window->logDownloader->thread();
    return window->findChild<QObject*>(name);
}

/// As SIGNAL() and SLOT() code them.
QByteArray signalCode(const QByteArray& signature)
{
    return '2' + signature;
}

QByteArray slotCode(const QByteArray& signature)
{
    return '1' + signature;
}

} // namespace

class TestWiring : public QObject
{
    Q_OBJECT

private slots:
    void method_data();
    void method();
    void methodsAreNineteen();
    void connection_data();
    void connection();
    void connectionsAreTheseOnly_data();
    void connectionsAreTheseOnly();
    void bothProgressesMoveOneBar();
    void imageArrives();
    void fileNameChanges();
};

void TestWiring::method_data()
{
    QTest::addColumn<int>("index");
    QTest::addColumn<QByteArray>("parameters");
    auto add = [index = 0](const char* signature, const char* parameters) mutable {
        QTest::newRow(signature) << index++ << QByteArray(parameters);
    };
    add("needDownloadNewFirmware()", "");
    add("needDownloadNewMainFirmware()", "");
    add("notNeedDownloadNewFirmware()", "");
    add("needDataCompleted(int)", "type");
    add("onFindNewVersion(QString,QString)", "newVersion,detailText");
    add("onFindMainNewVersion(QString,QString)", "newVersion,detailText");
    add("onChangeUpdateFileName(QString)", "filename");
    add("onStartDownloadMainUpdate()", "");
    add("dataCompleted(int)", "type");
    add("onLogDownloadFinished()", "");
    add("connectSlot()", "");
    add("updateDevice()", "");
    add("transmitSlot()", "");
    add("timerSlot()", "");
    add("updateFakeProgressSlot()", "");
    add("onYouHaveLastVersion()", "");
    add("onYouHaveProblem(QString,QString)", ",msg2");
    add("on_downloadLogFile_pressed()", "");
    add("on_stopDownloadingFile_pressed()", "");
}

void TestWiring::method()
{
    QFETCH(int, index);
    QFETCH(QByteArray, parameters);
    constexpr int signalCount = 4;
    const QMetaObject& meta = MainWindow::staticMetaObject;
    const QMetaMethod method = meta.method(meta.methodOffset() + index);
    QCOMPARE(method.methodSignature(), QByteArray(QTest::currentDataTag()));
    QCOMPARE(method.parameterNames().join(','), parameters);
    QCOMPARE(method.methodType(), index < signalCount ? QMetaMethod::Signal : QMetaMethod::Slot);
}

void TestWiring::methodsAreNineteen()
{
    const QMetaObject& meta = MainWindow::staticMetaObject;
    QCOMPARE(meta.methodCount() - meta.methodOffset(), 19);
}

void TestWiring::connection_data()
{
    QTest::addColumn<QString>("sender");
    QTest::addColumn<QByteArray>("signal");
    QTest::addColumn<QString>("receiver");
    QTest::addColumn<QByteArray>("slot");
    const auto add = [](const char* sender, const char* signal, const char* receiver, const char* slot) {
        QTest::addRow("%s %s to %s %s", sender, signal, receiver, slot)
            << QString(sender) << QByteArray(signal) << QString(receiver) << QByteArray(slot);
    };
    add("worker", "started()", "logDownloader", "process()");
    add("connect_button", "clicked()", "window", "connectSlot()");
    add("updateDeviceButton", "clicked()", "window", "updateDevice()");
    add("updateChecker", "findMainNewVersion(QString,QString)", "window",
        "onFindMainNewVersion(QString,QString)");
    add("updateChecker", "findNewVersion(QString,QString)", "window", "onFindNewVersion(QString,QString)");
    add("updateChecker", "downloadProgress(int)", "progressBarTransfer", "setValue(int)");
    add("logDownloader", "logDownloadProgress(int)", "progressBarTransfer", "setValue(int)");
    add("logDownloader", "logDownloadFinished()", "window", "onLogDownloadFinished()");
    add("logDownloader", "needwaitLogFileMd5()", "logDownloader", "waitLogFileMd5()");
    add("logDownloader", "needreadLogPart()", "logDownloader", "readLogPart()");
    add("logDownloader", "needdataCompleted(int)", "logDownloader", "dataCompleted(int)");
    add("logDownloader", "needresendMessage(int)", "logDownloader", "resendMessage(int)");
    add("window", "needDataCompleted(int)", "logDownloader", "dataCompleted(int)");
    add("updateChecker", "newUpdateFileDownloaded(bool)", "updateDeviceButton", "setEnabled(bool)");
    add("updateChecker", "youHaveLastVersion()", "window", "onYouHaveLastVersion()");
    add("updateChecker", "youHaveProblem(QString,QString)", "window", "onYouHaveProblem(QString,QString)");
    add("updateChecker", "changeUpdateFileName(QString)", "window", "onChangeUpdateFileName(QString)");
    add("updateChecker", "startDownloadMainUpdate()", "window", "onStartDownloadMainUpdate()");
    add("window", "needDownloadNewFirmware()", "updateChecker", "onNeedDownloadNewFirmware()");
    add("window", "needDownloadNewMainFirmware()", "updateChecker", "onNeedDownloadNewMainFirmware()");
    add("downloadLogFile", "pressed()", "window", "on_downloadLogFile_pressed()");
    add("stopDownloadingFile", "pressed()", "window", "on_stopDownloadingFile_pressed()");
}

void TestWiring::connection()
{
    QFETCH(QString, sender);
    QFETCH(QByteArray, signal);
    QFETCH(QString, receiver);
    QFETCH(QByteArray, slot);
    TestWindow window;
    QObject* const from = find(window, sender);
    QObject* const to = find(window, receiver);
    QVERIFY(from != nullptr && to != nullptr);
    const int receivers = from->receivers(signalCode(signal));
    // Taking the connection away succeeds only where it is.
    QVERIFY(QObject::disconnect(from, signalCode(signal), to, slotCode(slot)));
    QCOMPARE(from->receivers(signalCode(signal)), receivers - 1);
}

void TestWiring::connectionsAreTheseOnly_data()
{
    QTest::addColumn<QString>("sender");
    QTest::addColumn<int>("connections");
    QTest::newRow("the window's signals") << "window" << 3;
    QTest::newRow("the update checker's signals") << "updateChecker" << 8;
    QTest::newRow("the log downloader's signals") << "logDownloader" << 6;
}

void TestWiring::connectionsAreTheseOnly()
{
    QFETCH(QString, sender);
    QFETCH(int, connections);
    TestWindow window;
    const QObject* from = find(window, sender);
    const QMetaObject& meta = *from->metaObject();
    int found = 0;
    for (int i = meta.methodOffset(); i < meta.methodCount(); ++i)
        if (meta.method(i).methodType() == QMetaMethod::Signal)
            found += from->receivers(signalCode(meta.method(i).methodSignature()));
    QCOMPARE(found, connections);
}

void TestWiring::bothProgressesMoveOneBar()
{
    TestWindow window;
    emit window->updateChecker->downloadProgress(42);
    QCOMPARE(window.bar("progressBarTransfer").value(), 42);
    emit window->logDownloader->logDownloadProgress(7);
    QCOMPARE(window.bar("progressBarTransfer").value(), 7);
    QCOMPARE(window.bar("progressBarUpdate").value(), 0);
}

void TestWiring::imageArrives()
{
    TestWindow window;
    emit window->updateChecker->newUpdateFileDownloaded(true);
    QVERIFY(window.button("updateDeviceButton").isEnabled());
    emit window->updateChecker->newUpdateFileDownloaded(false);
    QVERIFY(!window.button("updateDeviceButton").isEnabled());
}

void TestWiring::fileNameChanges()
{
    TestWindow window;
    emit window->updateChecker->changeUpdateFileName("/somewhere/else.sb");
    QCOMPARE(window->updaterFile.fileName(), QString("/somewhere/else.sb"));
}

QTEST_MAIN(TestWiring)
#include "tst_wiring.moc"
