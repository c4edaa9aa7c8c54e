#include "tests/reliability/computer.h"
#include "tests/reliability/faults.h"

namespace {

const ByPhase carriesOn{
    {Phase::search, outcome::updated},       {Phase::catalogue, outcome::updated},
    {Phase::changeLog, outcome::updated},    {Phase::download, outcome::updated},
    {Phase::request, outcome::updated},      {Phase::stream, outcome::updated},
    {Phase::installation, outcome::updated}, {Phase::logHeader, outcome::wholeLog},
    {Phase::logParts, outcome::wholeLog},    {Phase::quit, outcome::updated},
};
const ByPhase isGone{
    {Phase::search, outcome::goneBefore},         {Phase::catalogue, outcome::goneBefore},
    {Phase::changeLog, outcome::goneBefore},      {Phase::download, outcome::goneBefore},
    {Phase::request, outcome::goneInUpdate},      {Phase::stream, outcome::goneInUpdate},
    {Phase::installation, outcome::goneInUpdate}, {Phase::logHeader, outcome::goneBeforeLog},
    {Phase::logParts, outcome::goneInLog},        {Phase::quit, outcome::goneInUpdate},
};
/// As when the window is closed.
ByPhase endOfSession()
{
    ByPhase all = endsAtOnce;
    all.emplace_back(Phase::quit, outcome::updated);
    return all;
}

constexpr long day = 24L * 60 * 60; ///< s
constexpr int napMs = 700;

FaultRow row(const char* name, Scenario (*road)(Phase), const ByPhase& expected,
             const std::function<void()>& fault)
{
    FaultRow row{
        "computer", name, "this phase is a single step; the phases before and after it cover it", {}};
    for (const auto& [phase, outcome] : expected) {
        row.cells.push_back({road(phase), outcome});
        row.cells.back().scenario.fault = [fault](Journey&) { fault(); };
    }
    return row;
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
        row("ends the session (SIGTERM)", longRoadTo, endOfSession(), [] { computer::endSession(); }),
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

std::vector<FaultRow> allFaults()
{
    std::vector<FaultRow> all;
    for (const auto& group :
         {unitFaults(), pairFaults(), serverFaults(), diskFaults(), userFaults(), computerFaults()})
        all.insert(all.end(), group.begin(), group.end());
    return all;
}
