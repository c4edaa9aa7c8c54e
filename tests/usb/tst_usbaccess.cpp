// An ordinary user at a unit on a real bus. Somebody else has plugged the unit in: its journal and image are
// in the directory that TALVEX_TEST_UNIT names (unit.journal, unit.image).

#include "tests/program/programtest.h"
#include "tests/program/scenario.h"
#include "tests/support/filecontent.h"
#include "tests/support/texts.h"
#include "tests/usb/pluggedunits.h"

#include <QtTest>

#include <unistd.h>

class tst_usbaccess : public ServedProgramTest
{
    Q_OBJECT

private slots:
    void withoutAccess();
    void withAccess();

private:
    Outcome begin() override;
};

Outcome tst_usbaccess::begin()
{
    if (geteuid() == 0)
        return Outcome("this is a test of what an ordinary user sees");
    if (PluggedUnits::nodes().size() != 1)
        return Outcome("not one unit plugged in: " + PluggedUnits::nodes().join(' '));
    return ServedProgramTest::begin();
}

void tst_usbaccess::withoutAccess()
{
    Program program(desktop);
    useRealBus(program);
    MUST(program.start());
    for (int press = 1; press <= 2; ++press)
        MUST(scenario::connectInVain(program));
    MUST(scenario::closeAndWait(program));
    const QStringList lines = program.errorOutput().split('\n'); // one for each press
    QCOMPARE(lines.size(), 2);
    for (const QString& line : lines)
        QVERIFY2(line.contains("3a5d:") && line.contains("70-talvex-updater.rules"), qPrintable(line));
}

void tst_usbaccess::withAccess()
{
    const QByteArray image = imageOf(6000);
    MUST(scenario::publish(server, image));
    Program program(desktop);
    useRealBus(program);
    program.setVariable("http_proxy", server.proxy());
    MUST(program.start());
    MUST(scenario::pressUpdate(program));
    MUST(scenario::seeFinished(program));
    QVERIFY(contentOf(qEnvironmentVariable("TALVEX_TEST_UNIT") + "/unit.image") == image);
}

QTEST_GUILESS_MAIN(tst_usbaccess)

#include "tst_usbaccess.moc"
