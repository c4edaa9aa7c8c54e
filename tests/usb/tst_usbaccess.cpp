// An ordinary user at a unit on a real bus. Somebody else has plugged the unit in: its journal and image are
// in the directory that TALVEX_TEST_UNIT names (unit.journal, unit.image).

#include "tests/harness/updateserver.h"
#include "tests/program/scenario.h"
#include "tests/support/filecontent.h"
#include "tests/support/texts.h"
#include "tests/usb/pluggedunits.h"

#include <QtTest>

#include <unistd.h>

class tst_usbaccess : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();

    void withoutAccess();
    void withAccess();

private:
    Desktop desktop;
    UpdateServer server;
};

void tst_usbaccess::initTestCase()
{
    QVERIFY2(geteuid() != 0, "this is a test of what an ordinary user sees");
    QCOMPARE(PluggedUnits::nodes().size(), 1);
    MUST(desktop.start());
    MUST(server.start());
}

void tst_usbaccess::withoutAccess()
{
    Program program(desktop);
    useRealBus(program);
    MUST(program.start());
    for (int press = 1; press <= 2; ++press)
        MUST(scenario::connectInVain(program));
    MUST(program.closeWindow());
    MUST(program.waitForExit(0));
    const QStringList lines = program.errorOutput().split('\n'); // one for each press
    QCOMPARE(lines.size(), 2);
    for (const QString& line : lines)
        QVERIFY2(line.contains("3a5d:") && line.contains("70-talvex-updater.rules"), qPrintable(line));
}

void tst_usbaccess::withAccess()
{
    const QByteArray image = imageOf(6000);
    MUST(publishFirmware(server, "HB4", scenario::offeredVersion, image, scenario::changeLog));
    Program program(desktop);
    useRealBus(program);
    program.setVariable("http_proxy", server.proxy());
    MUST(program.start());
    MUST(scenario::connectAndDownload(program));
    MUST(program.press("updateDeviceButton"));
    MUST(scenario::seeFinished(program));
    QVERIFY(contentOf(qEnvironmentVariable("TALVEX_TEST_UNIT") + "/unit.image") == image);
}

QTEST_GUILESS_MAIN(tst_usbaccess)

#include "tst_usbaccess.moc"
