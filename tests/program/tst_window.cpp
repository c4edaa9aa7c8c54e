// The window as a user meets it after the start, and the wiring behind it.

#include "tests/harness/program.h"
#include "tests/program/scenario.h"
#include "tests/support/filecontent.h"
#include "tests/support/windowtables.h"

#include <QJsonArray>
#include <QSettings>
#include <QtTest>

namespace {

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

/// The files that the program has mapped into its memory; empty if that cannot be read.
QByteArray loadedFiles(const Program& program)
{
    return contentOf(QString("/proc/%1/maps").arg(program.processId()));
}

} // namespace

class tst_window : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanupTestCase();

    void titleAndSize();
    void menuEntryNamesTheWindow();
    void icon_data();
    void icon();
    void controls_data();
    void controls();
    void onlyConnectResponds();
    void connectionsInOrder();
    void logFileIsCreatedBesideTheProgram();
    void nothingIsWrittenToTheErrorOutput();
    void notLoaded_data();
    void notLoaded();

private:
    Desktop desktop;
    std::unique_ptr<Program> program;
    View view;                ///< as it stood right after the start
    QByteArray loadedAtStart; ///< the files at that time
};

void tst_window::initTestCase()
{
    MUST(desktop.start());
    program = std::make_unique<Program>(desktop);
    MUST(program->start());
    view = program->look();
    loadedAtStart = loadedFiles(*program);
}

void tst_window::cleanupTestCase()
{
    MUST(program->closeWindow());
    MUST(program->waitForExit(0));
}

void tst_window::titleAndSize()
{
    const QJsonObject window = view.window();
    QCOMPARE(window["title"].toString(), QString(text::windowTitle));
    QCOMPARE(window["name"].toString(), QString("MainWindow"));
    QCOMPARE(window["class"].toString(), QString("MainWindow"));
    QCOMPARE(QSize(window["width"].toInt(), window["height"].toInt()), QSize(488, 440));
}

/// Otherwise the running program has a button of its own beside that of its menu entry.
void tst_window::menuEntryNamesTheWindow()
{
    const QSettings entry(TALVEX_MENU_ENTRY, QSettings::IniFormat);
    const QString name = entry.value("Desktop Entry/StartupWMClass").toString();
    QVERIFY(!name.isEmpty());
    QCOMPARE(desktop.screen().classOf(view.window()["winId"].toString().toULong()), name);
}

void tst_window::icon_data()
{
    QTest::addColumn<int>("size");
    for (const int size : {16, 32, 48, 128})
        QTest::addRow("%d pixels", size) << size;
}

void tst_window::icon()
{
    QFETCH(int, size);
    const QRgb arrow = qRgb(0xd9, 0x48, 0x0f);
    for (const QImage& image : desktop.screen().icons(view.mainWindow())) {
        if (image.width() != size)
            continue;
        QCOMPARE(image.height(), size);
        QCOMPARE(QColor(image.pixel(size / 2, size / 2)), QColor(arrow));
        QCOMPARE(qAlpha(image.pixel(0, 0)), 0);
        return;
    }
    QFAIL("the window has no icon of this size");
}

void tst_window::controls_data()
{
    QTest::addColumn<QString>("name");
    for (const windowtable::Control& control : windowtable::controls())
        QTest::newRow(control.name) << control.name;
}

void tst_window::controls()
{
    QFETCH(QString, name);
    const windowtable::Control& expected = windowtable::control(name);
    const QJsonObject control = view.widget(name);
    QVERIFY2(!control.isEmpty(), "no such control");
    QCOMPARE(control["class"].toString(), QString(expected.type));
    QCOMPARE(control["parent"].toString(), QString(expected.parent));
    if (!expected.geometry.isNull())
        QCOMPARE(QRect(control["x"].toInt(), control["y"].toInt(), control["width"].toInt(),
                       control["height"].toInt()),
                 expected.geometry);
    if (control["class"] == "QProgressBar")
        QCOMPARE(control["value"].toInt(-1), 0);
    else if (expected.text != nullptr)
        QCOMPARE(control["text"].toString(), QString(expected.text));
    QCOMPARE(control["enabled"].toBool(), expected.enabled);
    QCOMPARE(control["visible"].toBool(), expected.visible);
    QCOMPARE(control["whatsThis"].toString(), QString(expected.whatsThis));
}

void tst_window::onlyConnectResponds()
{
    MUST(program->clickOn("updateDeviceButton"));
    MUST(program->staysAway("a box after Update Device", &View::hasBox));
    QVERIFY(!program->look().targetOfWidget("downloadLogFile")); // not to be seen, so not to be clicked
    QVERIFY(!program->look().targetOfWidget("stopDownloadingFile"));
    MUST(scenario::connectInVain(*program));
    QVERIFY(program->look().enabled("connect_button"));
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
    QStringList expected;
    for (const windowtable::Connection& row : windowtable::connections())
        expected += QString("%1 %2 -> %3 %4").arg(row.sender, row.signal, row.receiver, row.slot);
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

void tst_window::notLoaded_data()
{
    QTest::addColumn<QByteArray>("folder");
    QTest::addColumn<bool>("onlyAtStart");
    // Qt loads its plugin for OpenGL, and with it the graphics driver, unless told that nobody needs it.
    QTest::newRow("OpenGL, also after clicks and a box") << QByteArray("/xcbglintegrations/") << false;
    // All of them, at the first picture that is read from a file.
    QTest::newRow("picture formats, at the start") << QByteArray("/imageformats/") << true;
}

void tst_window::notLoaded()
{
    QFETCH(QByteArray, folder);
    QFETCH(bool, onlyAtStart);
    const QByteArray loaded = onlyAtStart ? loadedAtStart : loadedFiles(*program);
    QVERIFY(loaded.contains("/platforms/libqxcb.so"));
    QVERIFY(!loaded.contains(folder));
}

QTEST_GUILESS_MAIN(tst_window)

#include "tst_window.moc"
