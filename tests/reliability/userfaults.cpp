#include "tests/reliability/faults.h"

namespace {

constexpr int longMs = 2000;

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
        rowOf("user", "closes the window", noEvent, longRoadTo, endsAtOnce(),
              [](Journey& journey) { journey.window().close(); }),
        rowOf("user", "presses every control twice, and the log's key", noEvent, roadToBeStopped,
              atAnyTime(outcome::updated, outcome::updated, outcome::emptyLog, outcome::cutLog),
              [](Journey& journey) { journey.pressEverything(); }),
        rowOf("user", "leaves every box open for 2 s", noBox, roadTo,
              {{Phase::identification, outcome::updated},
               {Phase::changeLog, outcome::updated},
               {Phase::installation, outcome::updated},
               {Phase::logParts, outcome::wholeLog}},
              [](Journey& journey) { journey.leaveBoxesOpen(longMs); }),
        rowOf("user", "closes every box with Escape", noBox, roadTo,
              {{Phase::identification, outcome::declined},
               {Phase::changeLog, outcome::declined},
               {Phase::installation, outcome::updated},
               {Phase::logParts, outcome::wholeLog}},
              [](Journey& journey) { journey.boxes.answerWithEscape(); }),
    };
}
