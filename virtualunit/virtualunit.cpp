#include "virtualunit/virtualunit.h"

#include "virtualunit/numbertext.h"

#include <algorithm>

namespace virtualunit {
namespace {

/// In every place of a status report that has no meaning here. Its high nibble is no status.
constexpr std::uint8_t filler = 0x55;

} // namespace

VirtualUnit::VirtualUnit(Options given)
    : options(std::move(given)),
      model(*findUnitModel(options.type)),
      journal(options.journalPath),
      status(options.repeatsOutcome),
      firmware(options, journal, status),
      log(options, journal)
{
}

bool VirtualUnit::open(Milliseconds now)
{
    const bool canOpen = !options.faults.has(Fault::CannotOpen) && !options.faults.has(Fault::NoPermission);
    if (!pluggedIn || !canOpen)
        return false;
    journal.add("opened");
    isOpen = true;
    reportAt = options.faults.has(Fault::NoVersionReport) ? never : now;
    return true;
}

void VirtualUnit::close(Milliseconds now)
{
    advance(now);
    log.abandon();
    journal.add("closed");
    isOpen = false;
    due.clear();
}

void VirtualUnit::unplug()
{
    if (pluggedIn)
        journal.add("unplugged");
    pluggedIn = false;
}

VirtualUnit::Receipt VirtualUnit::receive(std::span<const std::uint8_t> bytes, Milliseconds now)
{
    advance(now);
    if (!pluggedIn)
        return {false};
    if (refusesReport())
        return {false, options.faults.argument(Fault::TakesNothing)};
    ++outputReports;
    if (options.faults.hasAt(Fault::UnpluggedAt, outputReports)) {
        unplug(); // too late for the host to hear of it: the report has left
        return {};
    }
    if (bytes.size() != reportSize + 1) {
        journal.addError("report-length got=" + std::to_string(bytes.size()));
        return {};
    }
    if (bytes[0] != 0) {
        journal.addError("report-id got=0x" + hexText(bytes[0], 2));
        return {};
    }
    Report report;
    std::copy_n(bytes.begin() + 1, reportSize, report.begin());
    handle(report, now);
    return {};
}

bool VirtualUnit::refusesReport()
{
    if (!options.faults.has(Fault::TakesNothing))
        return false;
    if (!options.faults.has(Fault::TakesNothingFrom))
        return true;
    if (outputReports + 1 < static_cast<std::uint64_t>(options.faults.argument(Fault::TakesNothingFrom)))
        return false;
    journal.add("not-taken");
    return true;
}

void VirtualUnit::handle(const Report& report, Milliseconds now)
{
    const Command command = commandOf(report, model.layout);
    switch (command) {
    case Command::LogRequest:
    case Command::LogAcknowledge:
    case Command::LogResend:
        log.receive(command, report, now);
        break;
    case Command::FirmwareRequest:
    case Command::DataPacket:
    case Command::FinalPacket:
        log.abandon();
        firmware.receive(command, report, now);
        break;
    case Command::Unknown:
        journal.addError("command got=0x" + hexText(commandByte(report, model.layout), 2));
        firmware.spoil();
        break;
    }
    if (reportAt <= now || reportAt == never)
        reportAt = nextPeriodAfter(now); // a log kept it from reporting, or it waited for its first order
    advance(now);
}

std::optional<Report> VirtualUnit::takeInput(Milliseconds now)
{
    advance(now);
    if (due.empty())
        return std::nullopt;
    const Report report = due.front();
    due.pop_front();
    return report;
}

std::optional<Report> VirtualUnit::takeFlood(std::size_t waiting)
{
    if (!isOpen || waiting >= options.flood)
        return std::nullopt;
    return statusReport();
}

Milliseconds VirtualUnit::nextEventAt() const
{
    if (!pluggedIn)
        return never;
    return std::min({reportDueAt(), firmware.nextEventAt(), log.nextEventAt()});
}

/// Does, in the order of time, all that is due up to `now`.
void VirtualUnit::advance(Milliseconds now)
{
    for (Milliseconds at = nextEventAt(); at <= now; at = nextEventAt()) {
        clock = std::max(clock, at);
        if (firmware.nextEventAt() <= at)
            firmware.advance(at);
        else if (log.nextEventAt() <= at)
            takeLogReply();
        else
            due.push_back(statusReport());
    }
    clock = std::max(clock, now);
}

/// When the next report with a status is due, or `never`.
Milliseconds VirtualUnit::reportDueAt() const
{
    const bool keptByLog = log.isActive() && !options.floodsLog;
    if (!isOpen || keptByLog || firmware.hasGoneSilent())
        return never;
    const bool tellsAtOnce = options.periodMs == 0 && status.hasNews();
    return tellsAtOnce ? clock : reportAt;
}

/// Reports come at multiples of the period, so that two decks on one bus report in the same millisecond.
Milliseconds VirtualUnit::nextPeriodAfter(Milliseconds now) const
{
    const Milliseconds period = options.periodMs;
    return period == 0 ? never : (now / period + 1) * period;
}

Report VirtualUnit::statusReport()
{
    Report report;
    report.fill(filler);
    report[model.layout.headerOffset] = static_cast<std::uint8_t>(status.take() << 4U | options.lowNibble);
    report[model.versionByte] = options.version;
    reportAt = nextPeriodAfter(clock);
    return report;
}

void VirtualUnit::takeLogReply()
{
    const std::optional<Report> reply = log.takeReply();
    if (reply)
        due.push_back(*reply);
    else
        pluggedIn = false;
}

} // namespace virtualunit
