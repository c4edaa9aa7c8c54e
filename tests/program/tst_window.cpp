// The window as a user meets it after the start, and the wiring behind it.

#include "tests/harness/program.h"

#include <QJsonArray>
#include <QtTest>

namespace {

/// "signature parameters" of each method of a class, in order.
QStringList methodsOf(Program& program, const QByteArray& className)
{
    QStringList lines;
    const QJsonArray methods = program.ask("methods " + className).array();
    for (const QJsonValue& value : methods) {
        const QJsonObject method = value.toObject();
        lines += method["kind"].toString() + ' ' + method["signature"].toString() + ' ' +
                 method["parameters"].toString();
    }
    return lines;
}

QString connectionLine(const QJsonObject& row)
{
    // A control by its name, anything else by its class: a control's class says nothing.
    const auto side = [&](const QString& which) {
        const QString name = row[which + "Name"].toString();
        return row[which].toString().startsWith("Q") && !name.isEmpty() ? name : row[which].toString();
    };
    return side("sender") + ' ' + row["signal"].toString() + " -> " + side("receiver") + ' ' +
           row["slot"].toString();
}

} // namespace

class tst_window : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanupTestCase();

    void titleAndSize();
    void controls_data();
    void controls();
    void nothingElseIsShown();
    void buttonRow();
    void onlyConnectResponds();
    void methodsOfTheWindow();
    void connectionsInOrder();
    void logFileIsCreatedBesideTheProgram();
    void nothingIsWrittenToTheErrorOutput();
    void noOpenGlIsLoaded();

private:
    Desktop desktop;
    std::unique_ptr<Program> program;
    View view; ///< as it stood right after the start
};

void tst_window::initTestCase()
{
    MUST(desktop.start());
    program = std::make_unique<Program>(desktop);
    MUST(program->start());
    view = program->look();
}

void tst_window::cleanupTestCase()
{
    MUST(program->closeWindow());
    MUST(program->waitForExit(0));
}

void tst_window::titleAndSize()
{
    const QJsonObject window = view.window();
    QCOMPARE(window["title"].toString(), QString("Talvex updater v. 11"));
    QCOMPARE(window["name"].toString(), QString("MainWindow"));
    QCOMPARE(window["class"].toString(), QString("MainWindow"));
    QCOMPARE(QSize(window["width"].toInt(), window["height"].toInt()), QSize(488, 440));
}

void tst_window::controls_data()
{
    QTest::addColumn<QString>("className");
    QTest::addColumn<QString>("parent");
    QTest::addColumn<QRect>("geometry"); // null: the layout decides
    QTest::addColumn<QString>("text");   // null: not looked at
    QTest::addColumn<bool>("enabled");
    QTest::addColumn<bool>("visible");
    QTest::addColumn<QString>("whatsThis");

    const QString none;
    QTest::newRow("centralWidget") << "QWidget"
                                   << "MainWindow" << QRect(0, 0, 488, 440) << none << true << true << "";
    QTest::newRow("progressBarTransfer")
        << "QProgressBar"
        << "centralWidget" << QRect(20, 160, 451, 21) << none << false << true << "Transfer progress";
    QTest::newRow("progressBarUpdate")
        << "QProgressBar"
        << "centralWidget" << QRect(20, 260, 451, 21) << none << false << true << "";
    QTest::newRow("layoutWidget") << "QWidget"
                                  << "centralWidget" << QRect(10, 410, 471, 32) << none << true << true << "";
    QTest::newRow("connect_button") << "QPushButton"
                                    << "layoutWidget" << QRect() << "Connect" << true << true << "";
    QTest::newRow("updateDeviceButton")
        << "QPushButton"
        << "layoutWidget" << QRect() << "Update Device" << false << true << "";
    QTest::newRow("labelTransfer") << "QLabel"
                                   << "centralWidget" << QRect(20, 120, 411, 16) << "Transfer:" << false
                                   << true << "";
    QTest::newRow("labelUpdate") << "QLabel"
                                 << "centralWidget" << QRect(20, 230, 411, 16) << "Update:" << false << true
                                 << "";
    QTest::newRow("downloadLogFile") << "QPushButton"
                                     << "centralWidget" << QRect(250, 380, 231, 23) << "Download log file"
                                     << false << false << "";
    QTest::newRow("stopDownloadingFile")
        << "QPushButton"
        << "centralWidget" << QRect(250, 350, 231, 23) << "Stop downloading log file" << true << false << "";
}

void tst_window::controls()
{
    QFETCH(QString, className);
    QFETCH(QString, parent);
    QFETCH(QRect, geometry);
    QFETCH(QString, text);
    QFETCH(bool, enabled);
    QFETCH(bool, visible);
    QFETCH(QString, whatsThis);

    const QJsonObject control = view.widget(QTest::currentDataTag());
    QVERIFY2(!control.isEmpty(), "no such control");
    QCOMPARE(control["class"].toString(), className);
    QCOMPARE(control["parent"].toString(), parent);
    if (!geometry.isNull())
        QCOMPARE(QRect(control["x"].toInt(), control["y"].toInt(), control["width"].toInt(),
                       control["height"].toInt()),
                 geometry);
    if (!text.isNull())
        QCOMPARE(control["text"].toString(), text);
    if (className == "QProgressBar")
        QCOMPARE(control["value"].toInt(-1), 0);
    QCOMPARE(control["enabled"].toBool(), enabled);
    QCOMPARE(control["visible"].toBool(), visible);
    QCOMPARE(control["whatsThis"].toString(), whatsThis);
}

void tst_window::nothingElseIsShown()
{
    QStringList names;
    const QJsonArray widgets = view.window()["widgets"].toArray();
    for (const QJsonValue& widget : widgets)
        names += widget.toObject()["name"].toString();
    names.sort();
    const QStringList expected{"centralWidget",       "connect_button",    "downloadLogFile",
                               "labelTransfer",       "labelUpdate",       "layoutWidget",
                               "progressBarTransfer", "progressBarUpdate", "stopDownloadingFile",
                               "updateDeviceButton"};
    QCOMPARE(names, expected);
    QCOMPARE(view.boxCount(), 0);
}

void tst_window::buttonRow()
{
    const QJsonArray layouts = view.window()["layouts"].toArray();
    QCOMPARE(layouts.size(), 1);
    const QJsonObject row = layouts.at(0).toObject();
    QCOMPARE(row["name"].toString(), QString("horizontalLayout"));
    QCOMPARE(row["class"].toString(), QString("QHBoxLayout"));
    QCOMPARE(row["spacing"].toInt(), 6);
    QCOMPARE(row["margins"].toArray(), (QJsonArray{0, 0, 0, 0}));
    QCOMPARE(row["members"].toString(), QString("connect_button updateDeviceButton"));
}

void tst_window::onlyConnectResponds()
{
    MUST(program->clickOn("updateDeviceButton"));
    const auto boxOpen = [](const View& now) { return now.boxCount() != 0; };
    MUST(program->staysAway("a box after Update Device", boxOpen));
    QVERIFY(!program->look().targetOfWidget("downloadLogFile")); // not to be seen, so not to be clicked
    QVERIFY(!program->look().targetOfWidget("stopDownloadingFile"));
    MUST(program->press("connect_button"));
    MUST(program->waitForBox(errorBox("Device is not found.\nPlease connect.")));
    MUST(program->answer("Ok"));
    MUST(program->waitForNoBox());
    QVERIFY(program->look().enabled("connect_button"));
}

void tst_window::methodsOfTheWindow()
{
    const QStringList expected{
        "signal needDownloadNewFirmware() ",
        "signal needDownloadNewMainFirmware() ",
        "signal notNeedDownloadNewFirmware() ",
        "signal needDataCompleted(int) type",
        "slot onFindNewVersion(QString,QString) newVersion,detailText",
        "slot onFindMainNewVersion(QString,QString) newVersion,detailText",
        "slot onChangeUpdateFileName(QString) filename",
        "slot onStartDownloadMainUpdate() ",
        "slot dataCompleted(int) type",
        "slot onLogDownloadFinished() ",
        "slot connectSlot() ",
        "slot updateDevice() ",
        "slot transmitSlot() ",
        "slot timerSlot() ",
        "slot updateFakeProgressSlot() ",
        "slot onYouHaveLastVersion() ",
        "slot onYouHaveProblem(QString,QString) ,msg2",
        "slot on_downloadLogFile_pressed() ",
        "slot on_stopDownloadingFile_pressed() ",
    };
    QCOMPARE(methodsOf(*program, "MainWindow").join('\n'), expected.join('\n'));
}

void tst_window::connectionsInOrder()
{
    QStringList made;
    const QJsonArray rows = program->ask("connections").array();
    for (const QJsonValue& value : rows) {
        const QJsonObject row = value.toObject();
        // The update checker wires its own timer and network before the window begins.
        if (row["signal"].toString() == "started ()" || !made.isEmpty())
            made += connectionLine(row);
        QVERIFY2(row["connected"].toBool(), qPrintable(connectionLine(row)));
        QCOMPARE(row["type"].toInt(), static_cast<int>(Qt::AutoConnection));
    }
    const QStringList expected{
        "QThread started () -> LogDownloader process ()",
        "connect_button clicked() -> MainWindow connectSlot()",
        "updateDeviceButton clicked() -> MainWindow updateDevice()",
        "UpdateChecker findMainNewVersion(QString,QString) -> MainWindow onFindMainNewVersion(QString, "
        "QString)",
        "UpdateChecker findNewVersion(QString,QString) -> MainWindow onFindNewVersion(QString, QString)",
        "UpdateChecker downloadProgress(int) -> progressBarTransfer setValue(int)",
        "LogDownloader logDownloadProgress(int) -> progressBarTransfer setValue(int)",
        "LogDownloader logDownloadFinished() -> MainWindow onLogDownloadFinished()",
        "LogDownloader needwaitLogFileMd5() -> LogDownloader waitLogFileMd5()",
        "LogDownloader needreadLogPart() -> LogDownloader readLogPart()",
        // The acknowledgement is sent by the downloader itself, on its own thread.
        "LogDownloader needdataCompleted(int) -> LogDownloader dataCompleted(int)",
        "LogDownloader needresendMessage(int) -> LogDownloader resendMessage(int)",
        "MainWindow needDataCompleted(int) -> LogDownloader dataCompleted(int)",
        "UpdateChecker newUpdateFileDownloaded(bool) -> updateDeviceButton setEnabled(bool)",
        "UpdateChecker youHaveLastVersion() -> MainWindow onYouHaveLastVersion()",
        "UpdateChecker youHaveProblem(QString,QString) -> MainWindow onYouHaveProblem(QString,QString)",
        "UpdateChecker changeUpdateFileName(QString) -> MainWindow onChangeUpdateFileName(QString)",
        "UpdateChecker startDownloadMainUpdate() -> MainWindow onStartDownloadMainUpdate()",
        "MainWindow needDownloadNewFirmware() -> UpdateChecker onNeedDownloadNewFirmware()",
        "MainWindow needDownloadNewMainFirmware() -> UpdateChecker onNeedDownloadNewMainFirmware()",
    };
    QCOMPARE(made.join('\n'), expected.join('\n'));
}

void tst_window::logFileIsCreatedBesideTheProgram()
{
    const QStringList files = QDir(program->ownPath(".")).entryList(QDir::Files);
    QCOMPARE(files.size(), 2);
    const QRegularExpression stamp("^\\d{4}-\\d\\d-\\d\\d_\\d\\d_\\d\\d_\\d\\d_log\\.enc$");
    QVERIFY2(stamp.match(files.first()).hasMatch(), qPrintable(files.join(' ')));
    QCOMPARE(QFileInfo(program->ownPath(files.first())).size(), qint64(0));
    QCOMPARE(files.last(), QString("talvex-updater"));
}

void tst_window::nothingIsWrittenToTheErrorOutput()
{
    QCOMPARE(program->errorOutput(), QString());
}

/// Qt loads its plugin for OpenGL, and with it the graphics driver, unless told that nobody needs it.
void tst_window::noOpenGlIsLoaded()
{
    QFile maps(QString("/proc/%1/maps").arg(program->processId()));
    QVERIFY(maps.open(QIODevice::ReadOnly));
    const QByteArray loaded = maps.readAll();
    QVERIFY(loaded.contains("/platforms/libqxcb.so"));
    QVERIFY(!loaded.contains("/xcbglintegrations/"));
}

QTEST_GUILESS_MAIN(tst_window)

#include "tst_window.moc"
