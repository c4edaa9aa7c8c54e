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

/// The outcomes when the program is told to end.
inline const ByPhase endsAtOnce{
    {Phase::search, outcome::closedBefore},         {Phase::catalogue, outcome::closedBefore},
    {Phase::changeLog, outcome::closedBefore},      {Phase::download, outcome::closedBefore},
    {Phase::request, outcome::closedInUpdate},      {Phase::stream, outcome::closedInUpdate},
    {Phase::installation, outcome::closedInUpdate}, {Phase::logHeader, outcome::closedBeforeLog},
    {Phase::logParts, outcome::closedInLog},
};

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
