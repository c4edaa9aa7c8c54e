// The program's end while something that it asked does not answer: it ends all the same.

#include "tests/harness/attempts.h"
#include "tests/harness/program.h"
#include "tests/harness/updateserver.h"
#include "tests/program/scenario.h"

#include <QLocalServer>
#include <QtTest>

#include <csignal>

namespace {

using End = Outcome (*)(Program&, Desktop&);

Outcome closeWindow(Program& program, Desktop&)
{
    return program.closeWindow();
}

Outcome terminate(Program& program, Desktop&)
{
    program.sendSignal(SIGTERM);
    return {};
}

Outcome loseDisplay(Program& program, Desktop& desktop)
{
    program.watchEnd();
    desktop.takeAway();
    return {};
}

void addEnds()
{
    QTest::addColumn<End>("end");
    QTest::addColumn<int>("exitCode");
    QTest::newRow("window closed") << End(closeWindow) << 0;
    QTest::newRow("SIGTERM") << End(terminate) << 0;
    QTest::newRow("lost display") << End(loseDisplay) << 1;
}

} // namespace

Q_DECLARE_METATYPE(End)

class tst_hangingends : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();

    void systemBusIsSilent_data() { addEnds(); }
    void systemBusIsSilent();
    void unitCannotBeClosed_data() { addEnds(); }
    void unitCannotBeClosed();

private:
    UpdateServer server;
};

void tst_hangingends::initTestCase()
{
    MUST(server.start());
    MUST(publishFirmware(server, "HB4", scenario::offeredVersion, imageOf(scenario::longOnItsWay),
                         scenario::changeLog));
}

/// The transfer asks it to keep the computer awake, on a thread that nothing can end.
void tst_hangingends::systemBusIsSilent()
{
    QFETCH(End, end);
    QFETCH(int, exitCode);
    for (Attempts attempts; attempts.wantsAnother();) {
        Desktop desktop;
        MUST(desktop.start());
        Program program(desktop);
        const QString address = program.scratchPath("bus");
        program.setVariable("DBUS_SYSTEM_BUS_ADDRESS", "unix:path=" + address);
        MUST(scenario::startWithUnit(program, server.proxy()));
        QLocalServer bus; // takes connections and never answers; at the start Qt itself would wait for it
        QVERIFY(bus.listen(address));
        MUST(scenario::streamImage(program));
        QTRY_VERIFY(bus.hasPendingConnections());
        MUST(end(program, desktop));
        MUST(program.waitForPromptExit(exitCode));
        MUST(attempts.judge(program, scenario::seeGivenBack(program)));
    }
}

void tst_hangingends::unitCannotBeClosed()
{
    QFETCH(End, end);
    QFETCH(int, exitCode);
    Desktop desktop;
    MUST(desktop.start());
    Program program(desktop);
    program.preload(TALVEX_SILENT_CLOSE);
    MUST(scenario::startWithUnit(program, server.proxy()));
    MUST(scenario::declineOffer(program));
    MUST(end(program, desktop));
    MUST(program.waitForPromptExit(exitCode));
    QVERIFY(!scenario::journal(program).contains("closed"));
}

QTEST_GUILESS_MAIN(tst_hangingends)

#include "tst_hangingends.moc"
