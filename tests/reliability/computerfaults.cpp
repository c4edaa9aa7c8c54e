#include "tests/reliability/computer.h"
#include "tests/reliability/faults.h"

namespace {

const ByPhase carriesOn =
    atAnyTime(outcome::updated, outcome::updated, outcome::wholeLog, outcome::wholeLog, outcome::updated);
const ByPhase isGone = atAnyTime(outcome::goneBefore, outcome::goneInUpdate, outcome::goneBeforeLog,
                                 outcome::goneInLog, outcome::goneInUpdate);

constexpr long day = 24L * 60 * 60; ///< s
constexpr int napMs = 700;

FaultRow row(const char* name, Scenario (*road)(Phase), const ByPhase& expected,
             const std::function<void()>& fault)
{
    return rowOf("computer", name, "this phase is a single step; the phases before and after it cover it",
                 road, expected, [fault](Journey&) { fault(); });
}

FaultRow kill()
{
    FaultRow kill = row("kills the program", longRoadTo, isGone, [] { computer::kill(); });
    kill.shown = {
        {Phase::store,
         "before each single call that writes, syncs, removes or renames: the old image is whole on "
         "disk under one of its two names, or the new one is",
         "tst_imagestore::killedAtAnyCall"}};
    return kill;
}

} // namespace

std::vector<FaultRow> computerFaults()
{
    constexpr auto keptAwake = "it is kept awake until the box that reports the end";
    constexpr auto endsOfAnUpdate = "tst_sleepinhibitor::endsOfAnUpdate";
    return {
        row("sleeps and wakes up", roadTo, carriesOn, [] { computer::suspend(napMs); }),
        row("sets its clock back by a day", roadTo, carriesOn, [] { computer::setClock(-day); }),
        row("sets its clock forward by a day", roadTo, carriesOn, [] { computer::setClock(day); }),
        row("ends the session (SIGTERM)", longRoadTo, endsAtOnce(outcome::updated),
            [] { computer::endSession(); }),
        kill(),
        {"computer",
         "is about to fall asleep by itself",
         "it is kept awake only while a unit is being updated",
         {},
         {{Phase::request, keptAwake, endsOfAnUpdate},
          {Phase::stream, keptAwake, endsOfAnUpdate},
          {Phase::installation, keptAwake, endsOfAnUpdate}}},
        {"computer",
         "has no system bus to be kept awake by",
         "the bus is not needed then",
         {},
         {{Phase::request, "a line on standard error says so; all runs behind this page are made without one",
           "tst_sleepinhibitor::withoutABusALineIsWritten"}}},
    };
}

FaultRow rowOf(const char* group, const char* name, const char* elsewhere, Scenario (*road)(Phase),
               const ByPhase& expected, const std::function<void(Journey&)>& fault)
{
    FaultRow row{group, name, elsewhere, {}};
    for (const auto& [phase, outcome] : expected) {
        row.cells.push_back({road(phase), outcome});
        row.cells.back().scenario.fault = fault;
    }
    return row;
}

std::vector<FaultRow> allFaults()
{
    std::vector<FaultRow> all;
    for (const auto& group :
         {unitFaults(), pairFaults(), serverFaults(), diskFaults(), userFaults(), computerFaults()})
        all.insert(all.end(), group.begin(), group.end());
    return all;
}
