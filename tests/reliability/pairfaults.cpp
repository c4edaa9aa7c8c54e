#include "reliability/faults.h"

#include "virtualunit/hidapi/virtualbus.h"

using virtualunit::Fault;

namespace {

constexpr auto elsewhere =
    "as with a single unit, or the deck has no part in it; logs are fetched from single units only";

Scenario pairTo(Phase phase)
{
    Scenario scenario = roadTo(phase);
    scenario.units = {goodUnit(UNIT_TRK300_LEFT), goodUnit(UNIT_TRK300_RIGHT)};
    scenario.answers[cataloguePath] = ok(catalogueOf("PLT70", "27"));
    return scenario;
}

Scenario unpluggedIn(Phase phase, int deck)
{
    Scenario scenario = pairTo(phase);
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
    scenario.units[static_cast<std::size_t>(deck - 1)].faults.add(fault, argument);
    return scenario;
}

Scenario writesFailInTheStream(int deck)
{
    Scenario scenario = pairTo(Phase::stream);
    scenario.fault = [deck](Journey&) { virtualbus::failNextWrites(deck, allWrites); };
    return scenario;
}

/// Said again and again: otherwise it depends on the moment whether both decks are heard in one tick.
Scenario refusing(int deck)
{
    Scenario scenario = withFault(Phase::request, deck, Fault::RefusesTimeout);
    scenario.units[static_cast<std::size_t>(deck - 1)].repeatsOutcome = true;
    return scenario;
}

FaultRow row(const char* name, const std::vector<Scenario>& cells)
{
    return {"one deck of a pair", name, elsewhere, cells};
}

} // namespace

std::vector<FaultRow> pairFaults()
{
    std::vector<FaultRow> rows;
    struct Names
    {
        const char* unplugged;
        const char* silent;
        const char* refuses;
        const char* takesNothing;
        const char* fails;
        const char* closed;
    };
    constexpr std::array names{
        Names{"the first deck is unplugged", "the first deck falls silent",
              "the first deck refuses: timed out", "the first deck takes nothing",
              "the first deck fails to install", "the first deck cannot be opened"},
        Names{"the second deck is unplugged", "the second deck falls silent",
              "the second deck refuses: timed out", "the second deck takes nothing",
              "the second deck fails to install", "the second deck cannot be opened"},
    };
    for (int deck = 1; deck <= 2; ++deck) {
        const Names& name = names.at(static_cast<std::size_t>(deck - 1));
        rows.push_back(
            row(name.unplugged, {missing(deck), unpluggedIn(Phase::catalogue, deck),
                                 unpluggedIn(Phase::changeLog, deck), unpluggedIn(Phase::download, deck),
                                 unpluggedIn(Phase::request, deck), unpluggedIn(Phase::stream, deck),
                                 unpluggedIn(Phase::installation, deck), unpluggedIn(Phase::quit, deck)}));
        rows.push_back(row(name.closed, {withFault(Phase::search, deck, Fault::CannotOpen)}));
        rows.push_back(row(name.silent, {withFault(Phase::identification, deck, Fault::NoVersionReport),
                                         withFault(Phase::request, deck, Fault::NeverAnswers),
                                         withFault(Phase::installation, deck, Fault::SilentInstallation)}));
        rows.push_back(row(name.refuses, {refusing(deck)}));
        rows.push_back(row(name.takesNothing, {withFault(Phase::request, deck, Fault::TakesNothing, 100),
                                               writesFailInTheStream(deck)}));
        rows.push_back(row(name.fails, {withFault(Phase::installation, deck, Fault::InstallationFails)}));
    }
    return rows;
}
