// What is different on Windows, of the program for Windows, under Wine (scripts/windows.sh).

#include "tests/harness/program.h"
#include "tests/harness/updateserver.h"
#include "tests/harness/waiting.h"
#include "tests/harness/wine.h"
#include "tests/program/scenario.h"
#include "tests/program/tlsredirect.h"
#include "tests/support/filecontent.h"
#include "tests/support/texts.h"

#include <QtTest>

namespace {

constexpr int longestFolder = 240; ///< characters of the program's directory
constexpr int smallSize = 6000;

/// A value below HKEY_CURRENT_USER, as "reg add" takes it.
QStringList userValue(const QString& key, const QString& name, const QString& type, const QString& data)
{
    return {"HKCU\\" + key, "/v", name, "/t", type, "/d", data};
}

/// What SetThreadExecutionState is told.
constexpr auto keepAwake = "80000001"; // continuous, system required
constexpr auto asBefore = "80000000";

} // namespace

class tst_windows : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();

    void folders_data();
    void folders();
    void browserGetsTheAddress_data();
    void browserGetsTheAddress();
    void staysAwakeDuringAnUpdate();
    void sessionEnds_data();
    void sessionEnds();
    void proxyScriptCannotBeHad();
    void redirectToTls();
    void folderCannotBeWritten();
    void diskIsFull();
    void scales_data();
    void scales();

private:
    /// A whole update, from Connect to the end of the program.
    Outcome update(Program& program);
    /// From Connect to the end of the program, which cannot save what it downloads.
    Outcome failToSave(Program& program);

    Desktop desktop;
    UpdateServer server;
    QByteArray image;
};

void tst_windows::initTestCase()
{
    QVERIFY2(wine::isUsed(), "scripts/windows.sh runs this test");
    image = imageOf(smallSize);
    MUST(desktop.start({"-screen", "0", "1600x1200x24"}));
    MUST(server.start());
    MUST(scenario::publish(server, image));
}

Outcome tst_windows::update(Program& program)
{
    STEP(scenario::startWithUnit(program, server.proxy()));
    STEP(scenario::pressUpdate(program));
    return scenario::seeFinished(program);
}

Outcome tst_windows::failToSave(Program& program)
{
    STEP(scenario::acceptAnyOffer(program));
    STEP(program.waitFor("the problem", [](const View& view) {
        return view.box().has_value() && view.box()->text.startsWith(text::savingProblem);
    }));
    STEP(program.answer("Ok"));
    return program.waitForExit(0);
}

void tst_windows::folders_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("Cyrillic") << QString::fromUtf8("\u041F\u0440\u043E\u0433\u0440\u0430\u043C\u043C\u0430");
    QTest::newRow("Japanese") << QString::fromUtf8("\u66F4\u65B0\u30D7\u30ED\u30B0\u30E9\u30E0");
    QTest::newRow("Western") << QString::fromUtf8("M\u00FCller & S\u00F8n");
    QTest::newRow("blanks") << " two  blanks";
    QTest::newRow("beyond 16 bits") << QString::fromUtf8("\U0001F3A7");
    QTest::newRow("240 characters") << QString();
}

void tst_windows::folders()
{
    QFETCH(QString, name);
    Program program(desktop);
    if (name.isEmpty()) {
        // "Z:" stands before the path there.
        const int rest = longestFolder - 2 - QDir::cleanPath(program.ownPath("..")).size() - 1;
        name = QString(rest / 2, 'a') + '/' + QString(rest - rest / 2 - 1, 'b');
    }
    program.setFolder(name);
    MUST(program.placeFile(filename::image, "the image before"));
    MUST(update(program));
    QCOMPARE(scenario::receivedImage(program), image);
    QCOMPARE(program.fileContent(filename::image), image);
    QCOMPARE(program.fileContent(filename::backup), QByteArray("the image before"));
    QCOMPARE(QDir(program.ownPath(".")).entryList({filename::anyLog}, QDir::Files).size(), 1);
    QCOMPARE(program.errorOutput(), QString());
}

void tst_windows::browserGetsTheAddress_data()
{
    QTest::addColumn<QByteArray>("path");
    QTest::addColumn<QString>("handedOver");
    QTest::newRow("plain") << QByteArray("/bin/updater.zip") << "/bin/updater.zip";
    QTest::newRow("query") << QByteArray("/bin/get?a=1&b=2,3") << "/bin/get?a=1&b=2,3";
    QTest::newRow("blanks and quotes") << QByteArray("/bin/a b\" /select,c") << "/bin/a b%22 /select,c";
    QTest::newRow("Cyrillic") << QByteArray("/bin/\xD0\x94\xD0\xB0.zip") << "/bin/%D0%94%D0%B0.zip";
}

/// By Explorer of Windows' own folder; another one lies beside the program.
void tst_windows::browserGetsTheAddress()
{
    QFETCH(QByteArray, path);
    QFETCH(QString, handedOver);
    const QString standIn = qEnvironmentVariable("TALVEX_WINDOWS_EXPLORER");
    QByteArray catalogue = catalogueOf("HB4", "28", "http://a/b", "http://a/c");
    catalogue.replace("MainVer=11", "MainVer=12").replace("/bin/updater.zip", path);
    UpdateServer own;
    MUST(own.start());
    MUST(own.publish("/logs/updater.txt", "New window."));
    MUST(own.publish(cataloguePath, catalogue));
    Program program(desktop);
    const QString noted = program.scratchPath("opened");
    program.setVariable("TALVEX_OPENED", noted);
    QVERIFY(QFile::copy(standIn, program.ownPath("explorer.exe")));
    MUST(scenario::startWithUnit(program, own.proxy()));
    const QString explorer = wine::windowsPath("explorer.exe");
    QVERIFY(QFile::remove(explorer) && QFile::copy(standIn, explorer));
    MUST(scenario::acceptAnyOffer(program));
    MUST(program.waitForBox(infoBox(text::handOver)));
    MUST(program.waitFor("the address handed over", [&](const View&) { return QFile::exists(noted); }));
    QCOMPARE(QString::fromUtf8(contentOf(noted)).toLower(),
             QString(R"(c:\windows\explorer.exe  "http://%1%2")").arg(updateHost, handedOver).toLower());
    MUST(scenario::seeLastBox(program, infoBox(text::handOver)));
}

void tst_windows::staysAwakeDuringAnUpdate()
{
    Program program(desktop);
    program.setVariable("WINEDEBUG", "+relay");
    program.setInRegistry(
        userValue("Software\\Wine\\Debug", "RelayInclude", "REG_SZ", "kernel32.SetThreadExecutionState"));
    MUST(update(program));
    QStringList calls;
    const QRegularExpression call(R"(Call KERNEL32\.SetThreadExecutionState\((\w+))",
                                  QRegularExpression::CaseInsensitiveOption);
    QRegularExpressionMatchIterator found = call.globalMatch(program.errorOutput());
    while (found.hasNext())
        calls += found.next().captured(1);
    QVERIFY2(calls.size() >= 2, qPrintable(calls.join(' ')));
    QCOMPARE(calls.first(), QString(keepAwake));
    QCOMPARE(calls.last(), QString(asBefore));
}

void tst_windows::sessionEnds_data()
{
    QTest::addColumn<bool>("streams");
    QTest::addColumn<bool>("underABox");
    QTest::newRow("after the start") << false << false;
    QTest::newRow("under a box") << false << true;
    QTest::newRow("in the middle of the transfer") << true << false;
}

/// The user logs out: as if the window were closed.
void tst_windows::sessionEnds()
{
    QFETCH(bool, streams);
    QFETCH(bool, underABox);
    UpdateServer own;
    MUST(own.start());
    MUST(scenario::publish(own, imageOf(scenario::longOnItsWay)));
    Program program(desktop);
    MUST(scenario::startWithUnit(program, own.proxy()));
    if (streams)
        MUST(scenario::streamImage(program));
    if (underABox)
        MUST(scenario::seeOffer(program));
    const XScreen::Window window = program.look().mainWindow();
    program.watchEnd();
    QProcess logOut;
    wine::start(logOut, {"wineboot", "--end-session"});
    // Nothing shows when Windows tells the program, so how long the window takes to close is not measured.
    QVERIFY(waitUntil([&] {
        program.watchEnd();
        return !desktop.screen().originOf(window);
    }));
    MUST(program.waitForPromptExit(0));
    QVERIFY(program.hasQuit());
    QCOMPARE(scenario::lastWord(program), QString("closed"));
    MUST(wine::waitForEnd(logOut)); // or it would end the next program
}

/// Windows is told to ask a script for the proxy, and there is no such script.
void tst_windows::proxyScriptCannotBeHad()
{
    UpdateServer
        empty; // in a process of its own: until it has answered, the program and the probe are blocked
    MUST(empty.start());
    Program program(desktop);
    program.setVariable("TALVEX_PROXY_SCRIPT", empty.proxy() + "/proxy.pac");
    program.plugIn({scenario::unitOptions(program, "hb4")});
    MUST(program.start());
    MUST(scenario::connectUnit(program));
    MUST(program.waitForBox(scenario::networkProblemBox)); // without a proxy, the host is unknown
    QCOMPARE(empty.requests().value(0).line.section(' ', 0, 1), QString("GET /proxy.pac"));
    MUST(scenario::seeLastBox(program, scenario::networkProblemBox));
}

void tst_windows::redirectToTls()
{
    Program program(desktop);
    MUST(followRedirectToTls(program));
}

/// Windows lets no user write to its Program Files.
void tst_windows::folderCannotBeWritten()
{
    Program program(desktop);
    program.setVariable("http_proxy", server.proxy());
    program.plugIn({scenario::unitOptions(program, "hb4")});
    const QString own = program.ownPath(".");
    // Root may write anywhere, and so may a server of Wine's that root has started: both lose that right.
    const char* const restrained =
        R"(chmod a-w "$0"; wineserver -k; wineserver -w; [ $(id -u) -ne 0 ] ||)"
        R"( set -- setpriv --{inh-caps,bounding-set}=-dac_override "$@"; exec "$@")";
    program.setLauncher({"bash", "-c", restrained, own});
    const auto writable = qScopeGuard([&] { QProcess::execute("chmod", {"u+w", own}); });
    MUST(program.start());
    MUST(failToSave(program));
    QVERIFY(!program.fileContent(filename::image));
}

void tst_windows::diskIsFull()
{
    Program program(desktop);
    MUST(program.placeFile(filename::image, "the image before"));
    program.setLauncher({"sh", "-c", "trap '' XFSZ; ulimit -f 4; exec \"$@\"", "sh"}); // in 512 or 1024 bytes
    MUST(scenario::startWithUnit(program, server.proxy()));
    MUST(failToSave(program));
    QCOMPARE(program.fileContent(filename::backup), QByteArray("the image before"));
}

void tst_windows::scales_data()
{
    QTest::addColumn<int>("percent");
    for (const int percent : {100, 150, 200})
        QTest::addRow("%d %%", percent) << percent;
}

void tst_windows::scales()
{
    QFETCH(int, percent);
    Program program(desktop);
    program.setInRegistry(
        userValue("Control Panel\\Desktop", "LogPixels", "REG_DWORD", QString::number(96 * percent / 100)));
    MUST(scenario::startWithUnit(program, server.proxy()));
    const View view = program.look();
    QCOMPARE(desktop.screen().sizeOf(view.mainWindow()), QSize(488, 440) * percent / 100);
    MUST(scenario::connectUnit(program)); // the mouse hits what is seen
    MUST(scenario::acceptOffer(program));
    const QString folder = qEnvironmentVariable("TALVEX_TEST_ARTIFACTS");
    if (!folder.isEmpty())
        QVERIFY(QDir().mkpath(folder) &&
                desktop.savePicture(folder + QString("/window-%1.png").arg(percent)));
    MUST(scenario::leave(program));
}

QTEST_GUILESS_MAIN(tst_windows)

#include "tst_windows.moc"
