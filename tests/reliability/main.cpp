// The program in its own process, from its own main(), with a user in it who follows a plan. `--list` prints
// the faults, parted by tabs: "row GROUP NAME REASON", for each of its journeys "cell GROUP NAME PHASE
// OUTCOME COMPLAINTS" (parted by "|"), for what other tests show "shown GROUP NAME PHASE OUTCOME TEST".
// GROUP, NAME and PHASE as arguments make one journey; what is seen of it is printed (Journey).
#include "tests/reliability/faults.h"
#include "tests/support/httpthreads.h"
#include "tests/support/limits.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QTimer>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <optional>

#include <sys/stat.h>
#include <unistd.h>

int talvexMain(int argc, char** argv); // the program's own

namespace {

std::optional<Cell> chosen;

void beginJourney()
{
    // Once the window is there. Lives to the end of the event loop.
    QTimer::singleShot(0, qApp, [] { new Journey(*chosen); });
}

Q_COREAPP_STARTUP_FUNCTION(beginJourney)

const char* nameOf(Phase phase)
{
    return phaseNames.at(static_cast<std::size_t>(phase));
}

void printLine(const QStringList& fields)
{
    std::puts(fields.join('\t').toUtf8().constData());
}

void list()
{
    for (const FaultRow& row : allFaults()) {
        printLine({"row", row.group, row.name, row.elsewhere});
        for (const Cell& cell : row.cells)
            printLine({"cell", row.group, row.name, nameOf(cell.scenario.phase), cell.expected.sentence(),
                       cell.complaints.join('|')});
        for (const ShownElsewhere& shown : row.shown)
            printLine({"shown", row.group, row.name, nameOf(shown.phase), shown.outcome, shown.test});
    }
}

std::optional<Cell> find(const char* group, const char* name, const char* phase)
{
    for (const FaultRow& row : allFaults())
        for (const Cell& cell : row.cells)
            if (std::strcmp(row.group, group) == 0 && std::strcmp(row.name, name) == 0 &&
                std::strcmp(nameOf(cell.scenario.phase), phase) == 0)
                return cell;
    return std::nullopt;
}

/// Goes on as the same program in that directory. Returns only if it cannot.
void moveInto(const char* hex, char** arguments)
{
    const QByteArray own(arguments[0]);
    const QByteArray directory = own.left(own.lastIndexOf('/') + 1) + QByteArray::fromHex(hex);
    const QByteArray moved = directory + "/talvex-journey";
    if (mkdir(directory.constData(), S_IRWXU) == 0 && link(own.constData(), moved.constData()) == 0)
        execv(moved.constData(), arguments);
    std::perror(moved.constData());
}

/// True if the thread of Qt's HTTP client outlived the application, which calls through a null pointer then
/// as soon as that thread is sent an event. One that has ended is listed until it gets a processor once more;
/// the test must still hear of one that is not, and awaits this process for limits::hang().
bool isNetworkLeft()
{
    const QDeadlineTimer limit(limits::hang() / 2);
    while (httpThreads() > 0) {
        if (limit.hasExpired())
            return true;
        usleep(1000);
    }
    return false;
}

} // namespace

int main(int argc, char** argv)
{
    if (argc == 6 && std::strcmp(argv[1], "--in") == 0) {
        const char* const hex = argv[2];
        argv[2] = argv[0];
        moveInto(hex, argv + 2);
        return 2;
    }
    if (argc == 2 && std::strcmp(argv[1], "--list") == 0) {
        list();
        return 0;
    }
    chosen = argc == 4 ? find(argv[1], argv[2], argv[3]) : std::nullopt;
    if (!chosen) {
        std::fprintf(stderr, "usage: %s --list | GROUP FAULT PHASE\n", argv[0]);
        return 2;
    }
    if (chosen->scenario.beforeStart)
        chosen->scenario.beforeStart();
    const int result = talvexMain(1, argv);
    if (isNetworkLeft()) {
        std::puts("complaint the thread of the network is left");
        return EXIT_FAILURE;
    }
    return result;
}
