#include "reliability/computer.h"
#include "reliability/faults.h"

namespace {

constexpr std::array everywhere{Phase::search,   Phase::catalogue, Phase::changeLog,    Phase::download,
                                Phase::request,  Phase::stream,    Phase::installation, Phase::logHeader,
                                Phase::logParts, Phase::quit};
constexpr long day = 24L * 60 * 60; ///< s
constexpr int napMs = 700;

FaultRow row(const char* name, const char* elsewhere, const std::function<void()>& fault)
{
    FaultRow row{"computer", name, elsewhere, {}};
    for (const Phase phase : everywhere) {
        row.cells.push_back(roadTo(phase));
        row.cells.back().fault = [fault](Journey&) { fault(); };
    }
    return row;
}

} // namespace

std::vector<FaultRow> computerFaults()
{
    constexpr auto atOnce = "this is done at one go: before and after it are the phases beside it";
    return {
        row("sleeps and wakes up", atOnce, [] { computer::suspend(napMs); }),
        row("sets its clock back by a day", atOnce, [] { computer::setClock(-day); }),
        row("sets its clock forward by a day", atOnce, [] { computer::setClock(day); }),
        row("ends the session (SIGTERM)", atOnce, [] { computer::endSession(); }),
        row("kills the program", atOnce, [] { computer::kill(); }),
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
