// The program's end while a write to the unit is blocked: by a signal, or by closing the window.

#include "tests/harness/attempts.h"
#include "tests/harness/waiting.h"
#include "tests/program/programtest.h"
#include "tests/program/scenario.h"
#include "tests/support/filecontent.h"

#include <QtTest>

using scenario::Deed;

namespace {

constexpr int forLong = 60'000; ///< ms; no end waits for it
/// ms; longer than a thread is waited for that is in no write, and less than half of what one in a write is
constexpr int forAWhile = 1000;

/// The write on the worker thread: the acknowledge of a log's header, behind the request.
Outcome blockLog(Program& program)
{
    return scenario::fetchLog(program, "not-taken");
}

/// One write was blocked, it failed, and the last thing done was to close the unit.
Outcome seeNoOtherWrite(const Program& program)
{
    const QStringList journal = scenario::journal(program);
    const QStringList calls = linesOf(program.scratchPath("trace"));
    const bool isRight = journal.count("not-taken") == 1 && journal.endsWith("closed") &&
                         calls.endsWith("hid_close handle=1") &&
                         calls.filter(QRegularExpression("^hid_write .* result=-1$")).size() == 1;
    return isRight ? Outcome() : Outcome((journal + calls).join('\n'));
}

} // namespace

class tst_blockedwrites : public ProgramTest
{
    Q_OBJECT

private slots:
    void blockedForLong_data() { addRows(); }
    void blockedForLong();
    void blockedForAWhile_data() { addRows(); }
    void blockedForAWhile();

private:
    static void addRows();
    static Outcome endInBlockedWrite(Program& program, int blockedMs, const Deed& block, const Deed& end);
};

void tst_blockedwrites::addRows()
{
    QTest::addColumn<Deed>("block");
    QTest::addColumn<Deed>("end");
    // On the GUI thread: the first packet, behind the request; it would be sent once more.
    QTest::newRow("a transfer's, SIGTERM") << Deed(scenario::updateByHand) << Deed(scenario::terminate);
    QTest::newRow("a log's, SIGTERM") << Deed(blockLog) << Deed(scenario::terminate);
    QTest::newRow("a log's, window closed") << Deed(blockLog) << Deed(&Program::closeWindow);
}

/// Has the row's write blocked for so long, and then the row's end begin.
Outcome tst_blockedwrites::endInBlockedWrite(Program& program, int blockedMs, const Deed& block,
                                             const Deed& end)
{
    program.setVariable("TALVEX_VIRTUAL_HID_TRACE", program.scratchPath("trace"));
    STEP(program.placeFile(filename::service, "image")); // so that no server is asked
    const QString options = QString(",log=%1,fault=takes-nothing:%2,fault=takes-nothing-from:2")
                                .arg(program.ownPath(filename::service))
                                .arg(blockedMs);
    STEP(scenario::startWithUnit(program, scenario::deadProxy, options));
    program.watchEnd(); // which the machine may delay until the write is over
    STEP(block(program));
    if (!waitUntil([&] { return scenario::journal(program).contains("not-taken"); }))
        return Outcome("no write is blocked");
    return end(program);
}

void tst_blockedwrites::blockedForLong()
{
    QFETCH(Deed, block);
    QFETCH(Deed, end);
    Program program(desktop);
    MUST(endInBlockedWrite(program, forLong, block, end));
    MUST(program.waitForPromptExit(0)); // long before the write ends
    QCOMPARE(scenario::journal(program).last(), QString("not-taken"));
}

/// The unit is closed after the write has come back, and no other is begun.
void tst_blockedwrites::blockedForAWhile()
{
    QFETCH(Deed, block);
    QFETCH(Deed, end);
    for (Attempts attempts; attempts.wantsAnother();) {
        Program program(desktop);
        MUST(endInBlockedWrite(program, forAWhile, block, end));
        MUST(program.waitForExit(0));
        MUST(attempts.judge(program, seeNoOtherWrite(program))); // the end may come too late for the write
    }
}

QTEST_GUILESS_MAIN(tst_blockedwrites)

#include "tst_blockedwrites.moc"
