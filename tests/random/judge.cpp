#include "tests/random/judge.h"

#include "tests/random/answers.h"
#include "tests/support/boxlines.h"
#include "tests/support/texts.h"

#include <algorithm>
#include <array>

namespace {

using virtualunit::Fault;
using virtualunit::Verdict;

bool anyUnit(const Plan& plan, const std::function<bool(const virtualunit::Options&)>& is)
{
    return std::any_of(plan.units.begin(), plan.units.end(), is);
}

bool hasAny(const Plan& plan, std::initializer_list<Fault> faults)
{
    return anyUnit(plan, [faults](const virtualunit::Options& unit) {
        return std::any_of(faults.begin(), faults.end(),
                           [&unit](Fault fault) { return unit.faults.has(fault); });
    });
}

bool journalHas(const virtualbus::UnitView& unit, const QString& beginning)
{
    return std::any_of(unit.journal.begin(), unit.journal.end(), [&beginning](const std::string& line) {
        return QString::fromStdString(line).startsWith(beginning);
    });
}

/// Whether a fault of the plan, or the end of the run, is the reason for a complaint in a unit's journal.
bool isExplained(const QString& error, const Plan& plan, const Ending& ending)
{
    const bool restarts = hasAny(plan, {Fault::WrongCount, Fault::TooManyParts, Fault::ZeroParts});
    const bool floods = anyUnit(plan, [](const virtualunit::Options& unit) { return unit.floodsLog; });
    const bool lostOnBus = plan.busFault == Plan::BusFault::failWrites;
    const bool oneDeckBehind =
        plan.isPair() && !plan.isFaultless(); // either's acceptance starts both streams
    if (error.startsWith("error packet-number"))
        return hasAny(plan, {Fault::LosesPacket}) || lostOnBus || oneDeckBehind;
    if (error.startsWith("error packet-unexpected"))
        return oneDeckBehind;
    if (error == "error log-acknowledge-unexpected") // a header that is asked for again is acknowledged twice
        return restarts || floods || lostOnBus;
    if (error == "error log-resend-unexpected")
        return floods;
    if (error == "error log-acknowledge-missing") // the end came between the last part and its acknowledge
        return ending.last.stopPressed || ending.endedByUser || restarts || floods ||
               plan.busFault != Plan::BusFault::none || hasAny(plan, {Fault::UnpluggedAt});
    return false;
}

/// No packet out of order, no pad byte set, nothing that a unit did not ask for.
void judgeWire(const Plan& plan, const Ending& ending, QStringList& wrong)
{
    for (const virtualbus::UnitView& unit : ending.units) {
        for (const std::string& error : unit.errors)
            if (!isExplained(QString::fromStdString(error), plan, ending))
                wrong += "the unit complains: " + QString::fromStdString(error);
        if (journalHas(unit, "log-request") && journalHas(unit, "request digest"))
            wrong += "a log and an update in one run";
    }
}

/// What a unit installed is what the server has sent, or the service file, and what lies on the disk.
void judgeInstalled(const Plan& plan, const Ending& ending, QStringList& wrong)
{
    const std::optional<QByteArray> source = plan.hasServiceFile ? plan.image : plan.arrivingImage();
    for (const virtualbus::UnitView& unit : ending.units) {
        if (!journalHas(unit, "installing"))
            continue;
        const QByteArray installed(reinterpret_cast<const char*>(unit.image.data()),
                                   static_cast<int>(unit.image.size()));
        if (!source || installed != *source)
            wrong += "the unit installed something else than it was to get";
        if (!plan.hasServiceFile && installed != ending.after.image)
            wrong += "the unit installed something else than the file";
    }
    if (ending.boxes.contains(boxline::finished) &&
        (ending.units.empty() || ending.units.front().verdict != Verdict::Installed))
        wrong += "the window says that it is finished, the unit does not";
}

/// Exactly one closing message, where the program ends by itself; at most one where the user ends it.
/// Intentional: a unit that repeats its outcome makes the program report it again.
void judgeClosing(const Plan& plan, const Ending& ending, QStringList& wrong)
{
    const qsizetype count = boxline::closing(ending.boxes);
    const bool repeats = anyUnit(plan, [](const virtualunit::Options& unit) { return unit.repeatsOutcome; });
    const bool allFinished = count == ending.boxes.count(boxline::finished);
    if (count == 0 && !ending.endedByUser)
        wrong += "the program ended without a closing message";
    if (count > 1 && !(repeats && allFinished))
        wrong += QString("%1 closing messages").arg(count);
    if (ending.exitCode != 0)
        wrong += QString("exit code %1").arg(ending.exitCode);
}

/// The old image, or the only backup of one, whole under one of its names, or the new one.
void judgeDisk(const Plan& plan, const Ending& ending, QStringList& wrong)
{
    const ImageFiles& before = ending.before;
    const ImageFiles& after = ending.after;
    const std::optional<QByteArray> arriving = plan.arrivingImage();
    const bool asked = ending.asked.contains(imagePath);
    if (!(asked && arriving) && !(after == before))
        wrong += "the image's files have changed without an image";
    const bool replaced = asked && arriving && !after.image.isNull() && after.image == *arriving;
    if (!after.image.isNull() && !replaced && after.image != before.image)
        wrong += "what lies there as the image is neither the old one nor the new one";
    if (!before.image.isNull() && after.image != before.image && after.backup != before.image)
        wrong += "the old image is lost";
    if (before.image.isNull() && !before.backup.isNull() && !replaced && after.backup != before.backup)
        wrong += "the only image, the backup, is lost";
}

/// Every byte of the log that was received is in the one log file, and nothing else.
void judgeLog(const Plan& plan, const Ending& ending, QStringList& wrong)
{
    if (ending.logs.size() != 1) {
        wrong += QString("%1 log files").arg(ending.logs.size());
        return;
    }
    const bool alters =
        hasAny(plan, {Fault::WrongCount, Fault::TooManyParts, Fault::ZeroParts, Fault::OverlongLastPart});
    const bool floods = anyUnit(plan, [](const virtualunit::Options& unit) { return unit.floodsLog; });
    if (alters || floods || plan.fileSizeLimit || plan.units.empty() || !plan.units.front().log)
        return;
    const std::vector<std::uint8_t>& log = *plan.units.front().log;
    const QByteArray whole(reinterpret_cast<const char*>(log.data()), static_cast<int>(log.size()));
    if (!whole.startsWith(ending.logs.front()))
        wrong += "the log file holds what the unit did not send";
    const bool complete = journalHas(ending.units.front(), "log-complete") && !ending.last.stopPressed;
    if (complete && ending.logs.front() != whole)
        wrong +=
            QString("%1 of %2 bytes of the log are stored").arg(ending.logs.front().size()).arg(whole.size());
}

void judgeOutcome(const Plan& plan, const Ending& ending, QStringList& wrong)
{
    const QString due = plan.dueOutcome();
    const QString outcome = outcomeOf(ending);
    if (!due.isEmpty() && outcome != due)
        wrong += QString("%1, but it must be %2").arg(outcome, due);
}

void judgeHandles(const Ending& ending, QStringList& wrong)
{
    const bool workerMayBeBlocked = ending.last.logPressed; // in its wait for a header
    if (ending.openHandles > 0 && !workerMayBeBlocked)
        wrong += QString("%1 units are not given back").arg(ending.openHandles);
    if (ending.enumerationsNotFreed > 0)
        wrong += QString("%1 enumerations are not freed").arg(ending.enumerationsNotFreed);
}

} // namespace

QStringList violations(const Plan& plan, const Ending& ending)
{
    QStringList wrong = ending.wrong;
    judgeWire(plan, ending, wrong);
    judgeInstalled(plan, ending, wrong);
    judgeClosing(plan, ending, wrong);
    judgeDisk(plan, ending, wrong);
    judgeLog(plan, ending, wrong);
    judgeOutcome(plan, ending, wrong);
    judgeHandles(ending, wrong);
    return wrong;
}

QString outcomeOf(const Ending& ending)
{
    const std::array<std::pair<QString, const char*>, 12> rows{{
        {boxline::finished, "finished"},
        {boxline::logComplete, "log complete"},
        {boxline::handOver, "handed over"},
        {boxline::notSaved, "not saved"},
        {boxline::noInternet, "network problem"},
        {boxline::wrongDigest, "wrong digest"},
        {boxline::rejected, "rejected"},
        {boxline::timedOut, "timed out"},
        {boxline::skipped, "packets skipped"},
        {boxline::noRequest, "request not written"},
        {boxline::noFile, "no image"},
        {boxline::notFound, "not found"},
    }};
    for (const auto& [line, outcome] : rows)
        if (ending.boxes.contains(line))
            return outcome;
    if (ending.boxes.contains(boxline::upToDate))
        return "up to date";
    return ending.last.updatePressed ? "ended in an update" : "ended before an update";
}
