// The program's end while something that it asked does not answer: it ends all the same.

#include "tests/harness/attempts.h"
#include "tests/program/scenario.h"

#include <QLocalServer>
#include <QtTest>

using scenario::Deed;

namespace {

void addEnds()
{
    QTest::addColumn<Deed>("end");
    QTest::addColumn<int>("exitCode");
    QTest::newRow("window closed") << Deed(&Program::closeWindow) << 0;
    QTest::newRow("SIGTERM") << Deed(scenario::terminate) << 0;
    QTest::newRow("lost display") << Deed(&Program::loseDisplay) << 1;
}

} // namespace

class tst_hangingends : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();

    void nameServerIsSilent_data() { addEnds(); }
    void nameServerIsSilent();
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
    MUST(scenario::publish(server, imageOf(scenario::longOnItsWay)));
}

/// The program ends at its limit, and gives the unit back all the same.
void tst_hangingends::nameServerIsSilent()
{
    QFETCH(Deed, end);
    QFETCH(int, exitCode);
    for (Attempts attempts; attempts.wantsAnother();) {
        Desktop desktop;
        MUST(desktop.start());
        Program program(desktop);
        MUST(scenario::lookHostUp(program));
        MUST(end(program));
        MUST(program.waitForPromptExit(exitCode));
        MUST(attempts.judge(program, scenario::seeGivenBack(program)));
    }
}

/// The transfer asks it to keep the computer awake, on a thread that nothing can end.
void tst_hangingends::systemBusIsSilent()
{
    QFETCH(Deed, end);
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
        MUST(end(program));
        MUST(program.waitForPromptExit(exitCode));
        MUST(attempts.judge(program, scenario::seeGivenBack(program)));
    }
}

void tst_hangingends::unitCannotBeClosed()
{
    QFETCH(Deed, end);
    QFETCH(int, exitCode);
    Desktop desktop;
    MUST(desktop.start());
    Program program(desktop);
    program.preload(TALVEX_SILENT_CLOSE);
    MUST(scenario::startWithUnit(program, server.proxy()));
    MUST(scenario::declineOffer(program));
    MUST(end(program));
    MUST(program.waitForPromptExit(exitCode));
    QVERIFY(!scenario::journal(program).contains("closed"));
}

QTEST_GUILESS_MAIN(tst_hangingends)

#include "tst_hangingends.moc"
