#pragma once

#include "reliability/journey.h"

/// A fault and the phases in which it is tried.
struct FaultRow
{
    const char* group; ///< who fails: "unit", "server", ...
    const char* name;
    const char* elsewhere; ///< why it cannot occur in the other phases
    std::vector<Scenario> cells;
};

/// More writes than any journey makes: all fail from then on (virtualbus::failNextWrites).
inline constexpr int allWrites = 1000000000;

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

/// A good unit that takes its time, and a good road to `phase` with it. In the log's phases the unit has a
/// log.
/// @{
[[nodiscard]] virtualunit::Options goodUnit(UnitType type = UNIT_HB4);
[[nodiscard]] Scenario roadTo(Phase phase);
/// @}
