#pragma once

#include "virtualunit/firmwarereceiver.h"
#include "virtualunit/logserver.h"

#include <deque>

namespace virtualunit {

/// One unit as a host sees it through its reports. It owns no clock and no transport: whoever carries the
/// reports says what time it is, in ms of any clock that never goes back. Not thread-safe.
class VirtualUnit
{
public:
    explicit VirtualUnit(Options options);
    VirtualUnit(const VirtualUnit&) = delete;
    VirtualUnit& operator=(const VirtualUnit&) = delete;

    /// The host starts to read input reports; the first one is due at once. False: the unit cannot be opened.
    [[nodiscard]] bool open(Milliseconds now);

    /// The host goes away. A transfer continues when it comes back; a log does not.
    void close(Milliseconds now);

    /// Unplugs the unit for good. Reports that were due before can still be read.
    void unplug();

    /// What happened to an output report.
    struct Receipt
    {
        bool taken = true;
        Milliseconds blockedMs =
            0; ///< how long the host waits before it learns that the report was not accepted
    };

    /// Gives the unit `bytes` as the host wrote them: the report ID 0, then 64 payload bytes. Any other
    /// length or ID is an error in the journal and otherwise ignored.
    Receipt receive(std::span<const std::uint8_t> bytes, Milliseconds now);

    /// The oldest input report that is due at `now` and was not taken yet, or nothing.
    [[nodiscard]] std::optional<Report> takeInput(Milliseconds now);

    /// Another report, if the unit floods its host and only this many are waiting there; otherwise nothing.
    [[nodiscard]] std::optional<Report> takeFlood(std::size_t waiting);

    /// When takeInput() may have something next, or `never`.
    [[nodiscard]] Milliseconds nextEventAt() const;

    [[nodiscard]] bool isPluggedIn() const { return pluggedIn; }
    [[nodiscard]] const Options& settings() const { return options; }
    [[nodiscard]] const std::vector<std::string>& journalLines() const { return journal.lines(); }
    [[nodiscard]] const std::vector<std::uint8_t>& image() const { return firmware.image(); }
    [[nodiscard]] Verdict verdict() const { return firmware.verdict(); }

private:
    void advance(Milliseconds now);
    [[nodiscard]] bool refusesReport();
    void handle(const Report& report, Milliseconds now);
    void takeLogReply();
    [[nodiscard]] Report statusReport();
    [[nodiscard]] Milliseconds reportDueAt() const;
    [[nodiscard]] Milliseconds nextPeriodAfter(Milliseconds now) const;

    const Options options;
    const UnitModel& model;
    Journal journal;
    Status status;
    FirmwareReceiver firmware;
    LogServer log;

    bool pluggedIn = true;
    bool isOpen = false;
    Milliseconds clock = 0; ///< the latest time given
    std::uint64_t outputReports = 0;
    Milliseconds reportAt = never; ///< when the next periodic report is due
    std::deque<Report> due;
};

} // namespace virtualunit
