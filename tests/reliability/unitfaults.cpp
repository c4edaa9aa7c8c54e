#include "tests/reliability/faults.h"

#include "virtualunit/hidapi/virtualbus.h"

using virtualunit::Fault;

namespace {

constexpr int headerWaitReplies = 300; ///< 1 ms each
constexpr int packetInTheStream = 60;
constexpr int partInTheLog = 60;

/// As many as wait for a program at most.
constexpr std::size_t floodOfReports = 32;
/// Each one makes the program ask for one part more than once: enough that every part comes twice.
constexpr std::size_t floodInALog = 4;

Scenario withFault(Phase phase, Fault fault, int argument = 0)
{
    Scenario scenario = roadTo(phase);
    scenario.units.front().faults.add(fault, argument);
    return scenario;
}

Scenario unpluggedIn(Phase phase)
{
    Scenario scenario = longRoadTo(phase);
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

/// In the wait for a log's header: the program writes nothing before it has come.
Scenario writesFailFrom(Phase phase)
{
    Scenario scenario = phase == Phase::logHeader ? roadTo(phase) : longRoadTo(phase);
    if (phase == Phase::logHeader)
        scenario.units.front().faults.add(Fault::StrayReplies, 10 * headerWaitReplies);
    scenario.fault = [](Journey&) { virtualbus::failNextWrites(1, allWrites); };
    return scenario;
}

Scenario flooding(Phase phase)
{
    Scenario scenario = roadTo(phase);
    scenario.units.front().flood = scenario.fetchesLog ? floodInALog : floodOfReports;
    return scenario;
}

std::vector<FaultRow> logFaults()
{
    constexpr auto elsewhere = "a unit answers like this only while its log is fetched";
    const auto log = [](const char* name, Phase phase, const Outcome& expected, Fault fault, int argument = 0,
                        const QStringList& complaints = {}) {
        return FaultRow{"unit", name, elsewhere, {{withFault(phase, fault, argument), expected, complaints}}};
    };
    // The program asks for such a log again, and acknowledges its header twice.
    const QStringList startsOver{"error log-acknowledge-unexpected"};
    return {
        log("has no log", Phase::logHeader, outcome::emptyLog, Fault::NoLog),
        log("sends a thousand unknown replies", Phase::logHeader, outcome::wholeLog, Fault::StrayReplies,
            1000),
        log("announces one part too many", Phase::logParts, outcome::wholeLog, Fault::WrongCount, 1,
            startsOver),
        log("sends three more parts than announced", Phase::logParts, outcome::otherLog, Fault::TooManyParts,
            3, startsOver),
        log("announces 0 parts and sends a log", Phase::logParts, outcome::wholeLog, Fault::ZeroParts, 0,
            startsOver),
        log("claims that its last part holds 255 bytes", Phase::logParts, outcome::otherLog,
            Fault::OverlongLastPart, 255),
        log("answers with unknown replies before the first part", Phase::logParts, outcome::wholeLog,
            Fault::UnknownReplies, 1000),
    };
}

/// Every byte in the place of a status or of a reply code.
std::vector<FaultRow> anyByte()
{
    return {
        {"unit",
         "sends any status byte (256)",
         "nothing is read from the unit then, or as in the installation (quit); for a log, see below",
         {},
         {{Phase::identification, "the version is read, whatever the status says",
           "tst_identification::anyReport"},
          {Phase::request,
           "0x9_ starts the stream, 0xA_ and 0xB_ show their boxes and nothing is sent, all others are "
           "ignored",
           "tst_transferanswers::status"},
          {Phase::stream, "the stream goes on: nothing is read before its end",
           "tst_transfer::anyStatusInTheStream"},
          {Phase::installation,
           "0xE_ is shown as progress, 0xF_ as success, 0x7_ and 0xC_ as errors, all others are ignored",
           "tst_installation::ignored"}}},
        {"unit",
         "sends any reply code (256)",
         "a unit answers like this only while its log is fetched",
         {},
         {{Phase::logHeader,
           "0x60 ends with “Download log file is complete.…” and an empty file, all others but the header "
           "are ignored",
           "tst_logdownloader::anyByteInsteadOfTheHeader"},
          {Phase::logParts,
           "0x40 and 0x50 are parts and are stored; for all others the unit is asked to send again",
           "tst_logdownloader::anyByteInsteadOfAPart"}}},
    };
}

FaultRow only(const char* name, const char* elsewhere, const Scenario& scenario, const Outcome& expected)
{
    return {"unit", name, elsewhere, {{scenario, expected}}};
}

std::vector<FaultRow> refusals()
{
    constexpr auto requests = "a unit refuses only requests";
    constexpr auto noImage = "the unit has no image before";
    return {
        only("refuses: timed out", requests, withFault(Phase::request, Fault::RefusesTimeout),
             outcome::timedOut),
        only("refuses: packets skipped", requests, withFault(Phase::request, Fault::RefusesSkipped),
             outcome::skipped),
        {"unit",
         "loses a packet",
         "packets are sent in the stream only",
         {{withFault(Phase::stream, Fault::LosesPacket, packetInTheStream),
           outcome::wrongDigest,
           {"error packet-number expected=60 got=61"}}}},
        only("finds the digest wrong", noImage, withFault(Phase::stream, Fault::WrongDigest),
             outcome::wrongDigest),
        only("rejects the image", noImage, withFault(Phase::stream, Fault::RejectsImage), outcome::rejected),
        only("fails to install", "the unit installs nothing at other times",
             withFault(Phase::installation, Fault::InstallationFails), outcome::rejected),
    };
}

} // namespace

virtualunit::Options goodUnit(UnitType type)
{
    virtualunit::Options unit;
    unit.type = type;
    unit.version = 23;
    unit.periodMs = 0;
    unit.installMs = 100;
    return unit;
}

Scenario roadTo(Phase phase)
{
    Scenario scenario;
    scenario.phase = phase;
    scenario.units = {goodUnit()};
    scenario.fetchesLog = phase == Phase::logHeader || phase == Phase::logParts;
    if (scenario.fetchesLog)
        scenario.log = unitLog;
    if (phase == Phase::logHeader)
        scenario.units.front().faults.add(Fault::StrayReplies, headerWaitReplies);
    return scenario;
}

Scenario longRoadTo(Phase phase)
{
    Scenario scenario = roadTo(phase);
    virtualunit::Options& unit = scenario.units.front();
    if (phase == Phase::request)
        unit.acceptMs = anHourMs;
    else if (phase == Phase::installation)
        unit.installMs = anHourMs;
    else if (phase == Phase::logHeader)
        unit.faults.add(Fault::HeaderNeverComes);
    else if (phase == Phase::logParts)
        scenario.log = longLog;
    return scenario;
}

std::vector<FaultRow> unitFaults()
{
    constexpr auto isOpen = "the unit is open from here on";
    std::vector<FaultRow> rows{
        {"unit",
         "is unplugged",
         "the image is stored in one turn of the event loop; what happens meanwhile is noticed afterwards",
         {{nothingPluggedIn(), outcome::notFound},
          {unpluggedInIdentification(), outcome::notWritten},
          {unpluggedIn(Phase::catalogue), outcome::notWritten},
          {unpluggedIn(Phase::changeLog), outcome::notWritten},
          {unpluggedIn(Phase::download), outcome::notWritten},
          {unpluggedIn(Phase::request), outcome::keepsFirmware},
          {unpluggedIn(Phase::stream), outcome::keepsFirmware},
          {unpluggedIn(Phase::installation), outcome::keepsFirmware},
          {unpluggedIn(Phase::logHeader), outcome::awaitsHeader},
          {unpluggedIn(Phase::logParts), outcome::awaitsPart},
          {unpluggedIn(Phase::quit), outcome::updated}}},
        only("cannot be opened", isOpen, withFault(Phase::search, Fault::CannotOpen), outcome::notFound),
        only("may not be used by this user", isOpen, withFault(Phase::search, Fault::NoPermission),
             outcome::notFound),
        {"unit",
         "falls silent",
         "nothing is expected from the unit then",
         {{withFault(Phase::identification, Fault::NoVersionReport), outcome::updated},
          {withFault(Phase::request, Fault::NeverAnswers), outcome::keepsFirmware},
          {withFault(Phase::installation, Fault::SilentInstallation), outcome::keepsFirmware},
          {longRoadTo(Phase::logHeader), outcome::awaitsHeader},
          {withFault(Phase::logParts, Fault::StallsAfterPart, partInTheLog), outcome::awaitsPart}}},
        {"unit",
         "accepts no more data",
         "nothing is written to the unit then",
         {{withFault(Phase::request, Fault::TakesNothing, 100), outcome::notWritten},
          {writesFailFrom(Phase::stream), outcome::keepsFirmware},
          {writesFailFrom(Phase::logHeader), outcome::awaitsHeader},
          {writesFailFrom(Phase::logParts), outcome::awaitsPart}}},
    };
    const auto add = [&rows](const std::vector<FaultRow>& more) {
        rows.insert(rows.end(), more.begin(), more.end());
    };
    // Every flooding report is taken for a part that must come again, and every part that comes again is
    // acknowledged.
    const QStringList asksTooOften{"error log-acknowledge-unexpected", "error log-resend-unexpected"};
    add(refusals());
    add({{"unit",
          "floods the program with input reports",
          "nothing is read from the unit then",
          {{flooding(Phase::identification), outcome::updated},
           {flooding(Phase::request), outcome::updated},
           {flooding(Phase::stream), outcome::updated},
           {flooding(Phase::installation), outcome::updated},
           {flooding(Phase::logHeader), outcome::otherLog, asksTooOften},
           {flooding(Phase::logParts), outcome::otherLog, asksTooOften},
           {flooding(Phase::quit), outcome::updated}}}});
    add(logFaults());
    add(anyByte());
    return rows;
}
