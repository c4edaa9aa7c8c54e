// The program as it is unpacked on a system that has nothing of what it needs. TALVEX_TEST_PROGRAM is a
// command that starts it there; scripts/package.sh makes both.

#include "tests/harness/program.h"
#include "tests/harness/updateserver.h"
#include "tests/program/scenario.h"

#include <QtTest>

namespace {

/// What the program says beyond what its font library says of a system that has fonts and no settings for
/// them.
QString ownWords(Program& program)
{
    QStringList lines = program.errorOutput().split('\n');
    lines.removeAll("Fontconfig error: Cannot load default config file: No such file: (null)");
    return lines.join('\n');
}

} // namespace

class tst_bundle : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();

    void update_data();
    void update();

private:
    Desktop desktop;
    UpdateServer server;
};

void tst_bundle::initTestCase()
{
    MUST(desktop.start());
    MUST(server.start());
}

void tst_bundle::update_data()
{
    QTest::addColumn<int>("size");
    QTest::newRow("first run") << 6000;
    QTest::newRow("second run, which finds what the first has stored") << 6060;
}

void tst_bundle::update()
{
    QFETCH(int, size);
    const models::Connection connection = models::connectionOf("hb4");
    const QByteArray image = imageOf(size);
    Program program(desktop);
    MUST(scenario::offer(program, server, connection, image));
    program.plugIn(scenario::options(program, connection));
    MUST(program.start());
    MUST(scenario::connectAndDownload(program));
    MUST(program.press("updateDeviceButton"));
    MUST(scenario::seeFinished(program));
    QCOMPARE(scenario::journal(program, "hb4"), scenario::faultlessJournal(image));
    QVERIFY(scenario::receivedImage(program, "hb4") == image);
    QCOMPARE(ownWords(program), QString());
}

QTEST_GUILESS_MAIN(tst_bundle)

#include "tst_bundle.moc"
