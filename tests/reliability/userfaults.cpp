#include "reliability/faults.h"

namespace {

constexpr std::array inMidWork{Phase::catalogue, Phase::changeLog,    Phase::download,  Phase::request,
                               Phase::stream,    Phase::installation, Phase::logHeader, Phase::logParts};
constexpr int longMs = 2000;

Scenario at(Phase phase, const std::function<void(Journey&)>& act)
{
    Scenario scenario = roadTo(phase);
    scenario.fault = act;
    return scenario;
}

std::vector<Scenario> inMid(const std::function<void(Journey&)>& act)
{
    std::vector<Scenario> cells;
    for (const Phase phase : inMidWork)
        cells.push_back(at(phase, act));
    return cells;
}

} // namespace

std::vector<FaultRow> userFaults()
{
    std::vector<Scenario> closing = inMid([](Journey& journey) { journey.window().close(); });
    closing.insert(closing.begin(), at(Phase::search, [](Journey& journey) { journey.window().close(); }));
    std::vector<Scenario> pressing = inMid([](Journey& journey) { journey.pressEverything(); });
    pressing.insert(pressing.begin(), at(Phase::search, [](Journey& journey) { journey.pressEverything(); }));
    const auto leave = [](Journey& journey) { journey.leaveBoxesOpen(longMs); };
    return {
        {"user", "closes the window",
         "no event is taken in the middle of this; in the phase quit a box is in front of the window",
         closing},
        {"user", "presses every control twice, and the log's key",
         "no event is taken in the middle of this; in the phase quit a box is in front of the window",
         pressing},
        {"user",
         "leaves every box open for long",
         "the program shows no box then, unless another fault makes it",
         {at(Phase::identification, leave), at(Phase::changeLog, leave), at(Phase::installation, leave),
          at(Phase::logParts, leave)}},
    };
}
