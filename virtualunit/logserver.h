#pragma once

#include "virtualunit/firmwarereceiver.h"

namespace virtualunit {

/// The unit's side of a log download. A request starts a sequence of replies; each waits for the host's
/// answer to the one before: an acknowledgement of the header and of every part, a resend request for an
/// unknown reply.
class LogServer
{
public:
    /// The references must outlive this object.
    LogServer(const Options& options, Journal& journal);

    /// A report whose command is a log request, an acknowledge or a resend.
    void receive(Command command, const Report& report, Milliseconds now);

    /// The host wants something other than a log, or is gone: stops serving.
    void abandon();

    /// From the request to the last acknowledgement, or, if the unit falls silent, to abandon().
    [[nodiscard]] bool isActive() const { return active; }

    /// When takeReply() has a reply, or `never`.
    [[nodiscard]] Milliseconds nextEventAt() const { return replyAt; }

    /// The reply that is due; nothing: the unit vanishes now.
    [[nodiscard]] std::optional<Report> takeReply();

private:
    enum class Owed { Nothing, Acknowledge, Resend };

    struct Reply
    {
        std::optional<Report> report; ///< nothing: the unit vanishes
        Owed owed = Owed::Nothing;
        std::string line; ///< of the journal
        bool isLast = false;
    };

    void start(const Report& report, Milliseconds now);
    void end();
    void takeAcknowledge(Milliseconds now);
    void takeResend(Milliseconds now);
    void checkPad(const char* what, std::optional<std::size_t> pad);
    void buildReplies();
    void addHeader(std::size_t parts);
    void addParts(const std::vector<std::uint8_t>& log);
    void addUnknown(int count, Owed owed);
    [[nodiscard]] Report lastPart(std::span<const std::uint8_t> data) const;

    const Options& options;
    const ReportLayout layout;
    Journal& journal;

    std::vector<Reply> replies;
    std::size_t next = 0; ///< index of the reply to come
    Owed owed = Owed::Nothing;
    int acknowledges = 0; ///< of the log being served
    bool active = false;
    Milliseconds replyAt = never;
};

} // namespace virtualunit
