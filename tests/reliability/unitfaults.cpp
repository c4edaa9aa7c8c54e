#include "reliability/faults.h"

#include "virtualunit/hidapi/virtualbus.h"

using virtualunit::Fault;

namespace {

constexpr int headerWaitReplies = 300; ///< 1 ms each
constexpr int packetInTheStream = 60;
constexpr int partInTheLog = 60;

std::vector<std::uint8_t> logOfTheUnit()
{
    const QByteArray log = unitLog();
    return {log.begin(), log.end()};
}

Scenario withFault(Phase phase, Fault fault, int argument = 0)
{
    Scenario scenario = roadTo(phase);
    scenario.units.front().faults.add(fault, argument);
    return scenario;
}

/// The header is kept back for good, so that the fault alone decides.
Scenario withoutHeader()
{
    Scenario scenario = roadTo(Phase::logHeader);
    scenario.units.front().faults = {};
    scenario.units.front().faults.add(Fault::HeaderNeverComes);
    return scenario;
}

Scenario unpluggedIn(Phase phase)
{
    Scenario scenario = phase == Phase::logHeader ? withoutHeader() : roadTo(phase);
    scenario.fault = [](Journey&) { virtualbus::unplug(1); };
    return scenario;
}

Scenario unpluggedInIdentification()
{
    Scenario scenario = roadTo(Phase::identification);
    scenario.beforeConnect = [](Journey& journey) {
        virtualbus::failReads(1, true);
        QTimer::singleShot(0, &journey, [] { virtualbus::unplug(1); }); // behind the press
    };
    return scenario;
}

Scenario nothingPluggedIn()
{
    Scenario scenario = roadTo(Phase::search);
    scenario.units.clear();
    return scenario;
}

Scenario writesFailFrom(Phase phase)
{
    Scenario scenario = roadTo(phase);
    scenario.fault = [](Journey&) { virtualbus::failNextWrites(1, allWrites); };
    return scenario;
}

Scenario flooding(Phase phase)
{
    Scenario scenario = roadTo(phase);
    scenario.units.front().periodMs = 1;
    scenario.units.front().floodsLog = scenario.fetchesLog;
    scenario.units.front().repeatsOutcome = true; // one report among a thousand is easily missed
    return scenario;
}

std::vector<FaultRow> logFaults()
{
    constexpr auto elsewhere = "a log's answers come only while a log is fetched";
    const auto log = [](const char* name, Phase phase, Fault fault, int argument = 0) {
        return FaultRow{"unit", name, elsewhere, {withFault(phase, fault, argument)}};
    };
    return {
        log("has no log", Phase::logHeader, Fault::NoLog),
        log("sends a thousand unknown replies", Phase::logHeader, Fault::StrayReplies, 1000),
        log("announces one part too many", Phase::logParts, Fault::WrongCount, 1),
        log("sends three parts more than announced", Phase::logParts, Fault::TooManyParts, 3),
        log("announces 0 parts and sends a log", Phase::logParts, Fault::ZeroParts),
        log("says that its last part holds 255 bytes", Phase::logParts, Fault::OverlongLastPart, 255),
        log("answers with unknown replies before the first part", Phase::logParts, Fault::UnknownReplies,
            1000),
    };
}

FaultRow only(const char* name, const char* elsewhere, const Scenario& cell)
{
    return {"unit", name, elsewhere, {cell}};
}

} // namespace

virtualunit::Options goodUnit(UnitType type)
{
    virtualunit::Options unit;
    unit.type = type;
    unit.version = 23;
    unit.periodMs = 40; // what it says once is not lost on a slow machine
    unit.acceptMs = 300;
    unit.installMs = 500;
    return unit;
}

Scenario roadTo(Phase phase)
{
    Scenario scenario;
    scenario.phase = phase;
    scenario.units = {goodUnit()};
    scenario.fetchesLog = phase == Phase::logHeader || phase == Phase::logParts;
    if (scenario.fetchesLog)
        scenario.units.front().log = logOfTheUnit();
    if (phase == Phase::logHeader)
        scenario.units.front().faults.add(Fault::StrayReplies, headerWaitReplies);
    return scenario;
}

std::vector<FaultRow> unitFaults()
{
    std::vector<FaultRow> rows{
        {"unit",
         "is unplugged",
         "the image is stored at one go, in one turn of the event loop; what happens meanwhile is noticed "
         "after it",
         {nothingPluggedIn(), unpluggedInIdentification(), unpluggedIn(Phase::catalogue),
          unpluggedIn(Phase::changeLog), unpluggedIn(Phase::download), unpluggedIn(Phase::request),
          unpluggedIn(Phase::stream), unpluggedIn(Phase::installation), unpluggedIn(Phase::logHeader),
          unpluggedIn(Phase::logParts), unpluggedIn(Phase::quit)}},
        only("cannot be opened", "it is open from here on", withFault(Phase::search, Fault::CannotOpen)),
        only("may not be used by this user", "it is open from here on",
             withFault(Phase::search, Fault::NoPermission)),
        {"unit",
         "falls silent",
         "nothing is awaited from the unit then",
         {withFault(Phase::identification, Fault::NoVersionReport),
          withFault(Phase::request, Fault::NeverAnswers),
          withFault(Phase::installation, Fault::SilentInstallation), withoutHeader(),
          withFault(Phase::logParts, Fault::StallsAfterPart, partInTheLog)}},
        {"unit",
         "takes nothing any more",
         "nothing is written to the unit then",
         {withFault(Phase::request, Fault::TakesNothing, 100), writesFailFrom(Phase::stream),
          writesFailFrom(Phase::logHeader), writesFailFrom(Phase::logParts)}},
        only("refuses: timed out", "it answers requests only",
             withFault(Phase::request, Fault::RefusesTimeout)),
        only("refuses: packets skipped", "it answers requests only",
             withFault(Phase::request, Fault::RefusesSkipped)),
        only("loses a packet", "packets are sent in the stream only",
             withFault(Phase::stream, Fault::LosesPacket, packetInTheStream)),
        only("finds the digest wrong", "it has no image before",
             withFault(Phase::stream, Fault::WrongDigest)),
        only("rejects the image", "it has no image before", withFault(Phase::stream, Fault::RejectsImage)),
        only("fails to install", "it installs nothing else",
             withFault(Phase::installation, Fault::InstallationFails)),
        {"unit",
         "floods the program with input reports",
         "nothing is read from the unit then",
         {flooding(Phase::identification), flooding(Phase::request), flooding(Phase::stream),
          flooding(Phase::installation), flooding(Phase::logHeader), flooding(Phase::logParts),
          flooding(Phase::quit)}},
    };
    for (const FaultRow& row : logFaults())
        rows.push_back(row);
    return rows;
}
