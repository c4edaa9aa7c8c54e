#include "log/logdownloader.h"
#include "net/updatechecker.h"
#include "tests/support/boxlines.h"
#include "tests/support/testwindow.h"
#include "tests/support/windowtables.h"

#include <QMetaMethod>
#include <QThread>
#include <QtTest>

namespace {

/// An end of a connection: an object of the program by its class, a control by its name.
QObject* find(TestWindow& window, const QString& name)
{
    if (name == "MainWindow")
        return &*window;
    if (name == "UpdateChecker")
        return &window.checker();
    if (name == "LogDownloader")
        return &window.downloader();
    if (name == "QThread")
        return window->leftovers().worker;
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

/// How many connections the signal has. QObject tells that to its heirs.
int connectionsOf(const QObject& sender, const QByteArray& signature)
{
    struct Heir : QObject
    {
        using QObject::receivers;
    };
    return (sender.*&Heir::receivers)(signalCode(signature).constData());
}

} // namespace

class TestWiring : public QObject
{
    Q_OBJECT

private slots:
    void methods();
    void connection_data();
    void connection();
    void connectionsAreTheseOnly_data();
    void connectionsAreTheseOnly();
    void bothProgressesMoveOneBar();
    void imageArrives();
    void fileNameChanges();
};

void TestWiring::methods()
{
    QStringList found;
    const QMetaObject& meta = MainWindow::staticMetaObject;
    for (int index = meta.methodOffset(); index < meta.methodCount(); ++index) {
        const QMetaMethod method = meta.method(index);
        const char* const kind = method.methodType() == QMetaMethod::Signal ? "signal" : "slot";
        found +=
            QString("%1 %2 %3")
                .arg(kind, QString(method.methodSignature()), QString(method.parameterNames().join(',')));
    }
    QCOMPARE(found, windowtable::methods);
}

void TestWiring::connection_data()
{
    QTest::addColumn<QString>("sender");
    QTest::addColumn<QByteArray>("signal");
    QTest::addColumn<QString>("receiver");
    QTest::addColumn<QByteArray>("slot");
    const auto add = [](const windowtable::Connection& row) {
        QTest::addRow("%s %s to %s %s", row.sender, row.signal, row.receiver, row.slot)
            << QString(row.sender) << QMetaObject::normalizedSignature(row.signal) << QString(row.receiver)
            << QMetaObject::normalizedSignature(row.slot);
    };
    for (const windowtable::Connection& row : windowtable::connections())
        add(row);
    // by their names alone
    add({"downloadLogFile", "pressed()", "MainWindow", "on_downloadLogFile_pressed()"});
    add({"stopDownloadingFile", "pressed()", "MainWindow", "on_stopDownloadingFile_pressed()"});
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
    const int before = connectionsOf(*from, signal);
    // Taking the connection away succeeds only where it is.
    QVERIFY(QObject::disconnect(from, signalCode(signal), to, slotCode(slot)));
    QCOMPARE(connectionsOf(*from, signal), before - 1);
}

void TestWiring::connectionsAreTheseOnly_data()
{
    QTest::addColumn<QString>("sender");
    QTest::addColumn<int>("connections");
    QTest::newRow("the window's signals") << "MainWindow" << 3;
    QTest::newRow("the update checker's signals") << "UpdateChecker" << 8;
    QTest::newRow("the log downloader's signals") << "LogDownloader" << 6;
    QTest::newRow("the worker thread's signals") << "QThread" << 1;
    for (const windowtable::Control& control : windowtable::controls())
        QTest::newRow(control.name) << control.name << (control.type == QString("QPushButton") ? 1 : 0);
}

void TestWiring::connectionsAreTheseOnly()
{
    QFETCH(QString, sender);
    QFETCH(int, connections);
    TestWindow window;
    const QObject* from = find(window, sender);
    const QMetaObject& meta = *from->metaObject();
    int found = 0;
    for (int i = QObject::staticMetaObject.methodCount(); i < meta.methodCount(); ++i) {
        const QMetaMethod method = meta.method(i);
        const bool isShorter = (method.attributes() & QMetaMethod::Cloned) != 0; // counts as its long form
        if (method.methodType() == QMetaMethod::Signal && !isShorter)
            found += connectionsOf(*from, method.methodSignature());
    }
    QCOMPARE(found, connections);
}

void TestWiring::bothProgressesMoveOneBar()
{
    TestWindow window;
    emit window.checker().downloadProgress(42);
    QCOMPARE(window.bar("progressBarTransfer").value(), 42);
    emit window.downloader().logDownloadProgress(7);
    QCOMPARE(window.bar("progressBarTransfer").value(), 7);
    QCOMPARE(window.bar("progressBarUpdate").value(), 0);
}

void TestWiring::imageArrives()
{
    TestWindow window;
    emit window.checker().newUpdateFileDownloaded(true);
    QVERIFY(window.button("updateDeviceButton").isEnabled());
    emit window.checker().newUpdateFileDownloaded(false);
    QVERIFY(!window.button("updateDeviceButton").isEnabled());
}

void TestWiring::fileNameChanges()
{
    placeFile(filename::image, "image");
    TestWindow window;
    emit window.checker().changeUpdateFileName("/somewhere/else.sb");
    window->updateDevice();
    QCOMPARE(window.boxes.lines(), QStringList{boxline::noFile});
}

QTEST_MAIN(TestWiring)
#include "tst_wiring.moc"
