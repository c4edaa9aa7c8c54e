#pragma once

#include "tests/reliability/journey.h"
#include "tests/reliability/outcomes.h"

/// A phase of a fault that another test tries, and what that test asserts.
struct ShownElsewhere
{
    Phase phase;
    const char* outcome;
    const char* test; ///< "tst_program::function"
};

/// A fault and the phases in which it is tried.
struct FaultRow
{
    const char* group; ///< who fails: "unit", "server", ...
    const char* name;
    const char* elsewhere; ///< why it cannot occur in the other phases
    std::vector<Cell> cells;
    std::vector<ShownElsewhere> shown = {};
};

/// What one fault comes to in the phases in which it is tried.
using ByPhase = std::vector<std::pair<Phase, Outcome>>;

/// What comes of it when the program is told to end.
inline const ByPhase endsAtOnce{
    {Phase::search, outcome::closedBefore},         {Phase::catalogue, outcome::closedBefore},
    {Phase::changeLog, outcome::closedBefore},      {Phase::download, outcome::closedBefore},
    {Phase::request, outcome::closedInUpdate},      {Phase::stream, outcome::closedInUpdate},
    {Phase::installation, outcome::closedInUpdate}, {Phase::logHeader, outcome::closedBeforeLog},
    {Phase::logParts, outcome::closedInLog},
};

/// More writes than any journey makes: all fail from then on (virtualbus::failNextWrites).
inline constexpr int allWrites = 1000000000;

/// Longer than any journey.
inline constexpr virtualunit::Milliseconds anHourMs = 60 * 60 * 1000;

/// Every fault that is tried, in the order of the document.
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

/// A good unit, which tells everything once and at once, so that nothing it says is lost on a program that
/// stands still for a while.
[[nodiscard]] virtualunit::Options goodUnit(UnitType type = UNIT_HB4);

/// A good road to `phase` with such a unit. In the log's phases the unit has a log.
[[nodiscard]] Scenario roadTo(Phase phase);

/// The same with a unit that would need an hour for what this phase awaits from it, and a long log: however
/// late the fault comes, it is in time.
[[nodiscard]] Scenario longRoadTo(Phase phase);
