#include "tests/reliability/faults.h"

#include "virtualunit/hidapi/virtualbus.h"

using virtualunit::Fault;

namespace {

constexpr auto elsewhere =
    "as with a single unit, or the deck is not involved; logs are fetched from single units only";

virtualunit::Options& unitOf(Scenario& scenario, int deck)
{
    return scenario.units[static_cast<std::size_t>(deck - 1)];
}

Scenario pairTo(Phase phase)
{
    Scenario scenario = roadTo(phase);
    scenario.units = {goodUnit(UNIT_TRK300_LEFT), goodUnit(UNIT_TRK300_RIGHT)};
    return scenario;
}

/// However late the plug is pulled, it is in time: the deck would need so long for what is awaited. So would
/// the first one when nobody listens to it any more, as the second one is heard before it.
Scenario unpluggedIn(Phase phase, int deck)
{
    Scenario scenario = pairTo(phase);
    const Scenario slow = longRoadTo(phase);
    unitOf(scenario, deck).acceptMs = slow.units.front().acceptMs;
    unitOf(scenario, deck).installMs = slow.units.front().installMs;
    if (deck == 2 && phase != Phase::quit)
        unitOf(scenario, 1).installMs = anHourMs;
    scenario.fault = [deck](Journey&) { virtualbus::unplug(deck); };
    return scenario;
}

Scenario missing(int deck)
{
    Scenario scenario = pairTo(Phase::search);
    scenario.units.erase(scenario.units.begin() + deck - 1);
    return scenario;
}

Scenario withFault(Phase phase, int deck, Fault fault, int argument = 0)
{
    Scenario scenario = pairTo(phase);
    unitOf(scenario, deck).faults.add(fault, argument);
    return scenario;
}

/// Both go on telling their state, the one that has nothing to say too: a pair's answers count only when both
/// decks are heard in one tick.
void tellAgainAndAgain(Scenario& scenario)
{
    for (virtualunit::Options& unit : scenario.units) {
        unit.periodMs = 40;
        unit.repeatsOutcome = true;
    }
}

Scenario unanswering(int deck)
{
    Scenario scenario = withFault(Phase::request, deck, Fault::NeverAnswers);
    tellAgainAndAgain(scenario);
    return scenario;
}

Scenario writesFailInTheStream(int deck)
{
    Scenario scenario = pairTo(Phase::stream);
    tellAgainAndAgain(scenario);
    scenario.fault = [deck](Journey&) { virtualbus::failNextWrites(deck, allWrites); };
    return scenario;
}

/// Nobody listens to the first deck any more, which installs for so long.
Scenario secondInstallsSilently()
{
    Scenario scenario = withFault(Phase::installation, 2, Fault::SilentInstallation);
    unitOf(scenario, 1).installMs = anHourMs;
    return scenario;
}

FaultRow row(const char* name, const std::vector<Cell>& cells)
{
    return {"one deck of a pair", name, elsewhere, cells};
}

constexpr auto strayPackets = "error packet-unexpected"; // it has not accepted the other deck's stream

/// The deck that is read second; its status counts in the installation.
std::vector<FaultRow> firstDeck()
{
    return {
        row("the first deck is unplugged", {{missing(1), outcome::notFound},
                                            {unpluggedIn(Phase::catalogue, 1), outcome::notWritten},
                                            {unpluggedIn(Phase::changeLog, 1), outcome::notWritten},
                                            {unpluggedIn(Phase::download, 1), outcome::notWritten},
                                            {unpluggedIn(Phase::request, 1), outcome::keepsFirmware},
                                            {unpluggedIn(Phase::stream, 1), outcome::oneDeck},
                                            {unpluggedIn(Phase::installation, 1), outcome::oneDeck},
                                            {unpluggedIn(Phase::quit, 1), outcome::updated}}),
        row("the first deck cannot be opened",
            {{withFault(Phase::search, 1, Fault::CannotOpen), outcome::notFound}}),
        row("the first deck falls silent",
            {{withFault(Phase::identification, 1, Fault::NoVersionReport), outcome::updated},
             {unanswering(1), outcome::oneDeck, {strayPackets}},
             {withFault(Phase::installation, 1, Fault::SilentInstallation), outcome::oneDeck}}),
        row("the first deck refuses: timed out",
            {{withFault(Phase::request, 1, Fault::RefusesTimeout), outcome::timedOut}}),
        row("the first deck takes nothing",
            {{withFault(Phase::request, 1, Fault::TakesNothing, 100), outcome::notWritten},
             {writesFailInTheStream(1), outcome::oneDeck}}),
        row("the first deck fails to install",
            {{withFault(Phase::installation, 1, Fault::InstallationFails), outcome::oneDeckRejected}}),
    };
}

std::vector<FaultRow> secondDeck()
{
    return {
        row("the second deck is unplugged", {{missing(2), outcome::notFound},
                                             {unpluggedIn(Phase::catalogue, 2), outcome::notWritten},
                                             {unpluggedIn(Phase::changeLog, 2), outcome::notWritten},
                                             {unpluggedIn(Phase::download, 2), outcome::notWritten},
                                             {unpluggedIn(Phase::request, 2), outcome::keepsFirmware},
                                             {unpluggedIn(Phase::stream, 2), outcome::keepsFirmware},
                                             {unpluggedIn(Phase::installation, 2), outcome::keepsFirmware},
                                             {unpluggedIn(Phase::quit, 2), outcome::updated}}),
        row("the second deck cannot be opened",
            {{withFault(Phase::search, 2, Fault::CannotOpen), outcome::notWritten}}),
        row("the second deck falls silent",
            {{withFault(Phase::identification, 2, Fault::NoVersionReport), outcome::updated},
             {unanswering(2), outcome::oneDeckTold, {strayPackets}},
             {secondInstallsSilently(), outcome::keepsFirmware}}),
        row("the second deck refuses: timed out",
            {{withFault(Phase::request, 2, Fault::RefusesTimeout), outcome::timedOut}}),
        row("the second deck takes nothing",
            {{withFault(Phase::request, 2, Fault::TakesNothing, 100), outcome::notWritten},
             {writesFailInTheStream(2), outcome::oneDeckTold}}),
        row("the second deck fails to install",
            {{withFault(Phase::installation, 2, Fault::InstallationFails), outcome::oneDeckTold}}),
    };
}

} // namespace

std::vector<FaultRow> pairFaults()
{
    std::vector<FaultRow> rows = firstDeck();
    const std::vector<FaultRow> second = secondDeck();
    rows.insert(rows.end(), second.begin(), second.end());
    return rows;
}
