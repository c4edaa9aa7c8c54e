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
    const auto escape = [](Journey& journey) { journey.boxes.answerWithEscape(); };
    const auto leave = [](Journey& journey) { journey.leaveBoxesOpen(longMs); };
    return {
        {"user", "closes the window",
         "no event is taken in the middle of this, or a box stands in front of the window", closing},
        {"user", "presses every control twice, and the log's key",
         "no event is taken in the middle of this, or a box stands in front of the window", pressing},
        {"user",
         "leaves every box open for 2 s",
         "no box opens then, unless another fault opens it; the closing one belongs to the installation",
         {at(Phase::identification, leave), at(Phase::changeLog, leave), at(Phase::installation, leave),
          at(Phase::logParts, leave)}},
        {"user",
         "closes every box with Escape",
         "no box opens then, unless another fault opens it; the closing one belongs to the installation",
         {at(Phase::identification, escape), at(Phase::changeLog, escape), at(Phase::installation, escape),
          at(Phase::logParts, escape)}},
    };
}
