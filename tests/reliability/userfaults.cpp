#include "tests/reliability/faults.h"

namespace {

const ByPhase carriesOnOrStops{
    {Phase::search, outcome::updated},       {Phase::catalogue, outcome::updated},
    {Phase::changeLog, outcome::updated},    {Phase::download, outcome::updated},
    {Phase::request, outcome::updated},      {Phase::stream, outcome::updated},
    {Phase::installation, outcome::updated}, {Phase::logHeader, outcome::emptyLog},
    {Phase::logParts, outcome::cutLog},
};
constexpr int longMs = 2000;

FaultRow row(const char* name, const char* elsewhere, const ByPhase& expected, Scenario (*road)(Phase),
             const std::function<void(Journey&)>& act)
{
    FaultRow row{"user", name, elsewhere, {}};
    for (const auto& [phase, outcome] : expected) {
        row.cells.push_back({road(phase), outcome});
        row.cells.back().scenario.fault = act;
    }
    return row;
}

/// The log goes on until Stop is pressed, the update comes to its end.
Scenario roadToBeStopped(Phase phase)
{
    return phase == Phase::logHeader || phase == Phase::logParts ? longRoadTo(phase) : roadTo(phase);
}

} // namespace

std::vector<FaultRow> userFaults()
{
    constexpr auto noEvent = "no event is handled during this phase, or a box blocks the window";
    constexpr auto noBox =
        "no box opens then, unless another fault opens one; the closing box belongs to the installation";
    return {
        row("closes the window", noEvent, endsAtOnce, longRoadTo,
            [](Journey& journey) { journey.window().close(); }),
        row("presses every control twice, and the log's key", noEvent, carriesOnOrStops, roadToBeStopped,
            [](Journey& journey) { journey.pressEverything(); }),
        row("leaves every box open for 2 s", noBox,
            {{Phase::identification, outcome::updated},
             {Phase::changeLog, outcome::updated},
             {Phase::installation, outcome::updated},
             {Phase::logParts, outcome::wholeLog}},
            roadTo, [](Journey& journey) { journey.leaveBoxesOpen(longMs); }),
        row("closes every box with Escape", noBox,
            {{Phase::identification, outcome::declined},
             {Phase::changeLog, outcome::declined},
             {Phase::installation, outcome::updated},
             {Phase::logParts, outcome::wholeLog}},
            roadTo, [](Journey& journey) { journey.boxes.answerWithEscape(); }),
    };
}
