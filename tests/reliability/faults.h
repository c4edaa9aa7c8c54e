#pragma once

#include "tests/reliability/journey.h"
#include "tests/reliability/outcomes.h"

/// A phase of a fault that is covered by another test, and what that test asserts.
struct ShownElsewhere
{
    Phase phase;
    const char* outcome;
    const char* test; ///< "tst_program::function"
};

/// A fault and the phases in which it is tested.
struct FaultRow
{
    const char* group; ///< what fails: "unit", "server", ...
    const char* name;
    const char* elsewhere; ///< why it cannot occur in the other phases
    std::vector<Cell> cells;
    std::vector<ShownElsewhere> shown = {};
};

/// The outcome of one fault in each phase in which it is tested.
using ByPhase = std::vector<std::pair<Phase, Outcome>>;

/// The outcomes of a fault that may come at any time: before the unit is updated, while it is, in the two
/// phases of a log, and, if told, at the end of an update.
[[nodiscard]] inline ByPhase atAnyTime(const Outcome& before, const Outcome& inUpdate,
                                       const Outcome& logHeader, const Outcome& logParts,
                                       const std::optional<Outcome>& quit = {})
{
    ByPhase all{{Phase::search, before},         {Phase::catalogue, before},    {Phase::changeLog, before},
                {Phase::download, before},       {Phase::request, inUpdate},    {Phase::stream, inUpdate},
                {Phase::installation, inUpdate}, {Phase::logHeader, logHeader}, {Phase::logParts, logParts}};
    if (quit)
        all.emplace_back(Phase::quit, *quit);
    return all;
}

/// The outcomes when the program is told to end.
[[nodiscard]] inline ByPhase endsAtOnce(const std::optional<Outcome>& quit = {})
{
    return atAnyTime(outcome::closedBefore, outcome::closedInUpdate, outcome::closedBeforeLog,
                     outcome::closedInLog, quit);
}

/// A row of journeys on this road that have these outcomes.
[[nodiscard]] FaultRow rowOf(const char* group, const char* name, const char* elsewhere,
                             Scenario (*road)(Phase), const ByPhase& expected,
                             const std::function<void(Journey&)>& fault);

/// More writes than any journey makes, so that all later writes fail (virtualbus::failNextWrites).
inline constexpr int allWrites = 1000000000;

/// Longer than any journey.
inline constexpr virtualunit::Milliseconds anHourMs = 60 * 60 * 1000;

/// Every fault that is tested, in the order of the document.
[[nodiscard]] std::vector<FaultRow> allFaults();

/// The rows of one group each.
/// @{
[[nodiscard]] std::vector<FaultRow> unitFaults();
[[nodiscard]] std::vector<FaultRow> pairFaults();
[[nodiscard]] std::vector<FaultRow> serverFaults();
[[nodiscard]] std::vector<FaultRow> diskFaults();
[[nodiscard]] std::vector<FaultRow> userFaults();
[[nodiscard]] std::vector<FaultRow> computerFaults();
/// @}

/// A good unit that reports everything once and immediately, so that nothing is lost if the program stalls
/// for a while.
[[nodiscard]] virtualunit::Options goodUnit(UnitType type = UNIT_HB4);

/// A scenario that reaches `phase` without a fault, with such a unit. In the log phases the unit has a log.
[[nodiscard]] Scenario roadTo(Phase phase);

/// Like roadTo(), but the unit would take an hour for what this phase waits for, and its log is long, so
/// that the fault always comes in time.
[[nodiscard]] Scenario longRoadTo(Phase phase);
