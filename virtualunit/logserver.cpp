#include "virtualunit/logserver.h"

#include "virtualunit/md5.h"

namespace virtualunit {
namespace {

/// Reply codes, in byte 0 for every model.
namespace code {
constexpr std::uint8_t header = 0x20;
constexpr std::uint8_t noLog = 0x60;
constexpr std::uint8_t fullPart = 0x40;
constexpr std::uint8_t lastPart = 0x50;
constexpr std::uint8_t unknown = 0x5A; // 'Z'
} // namespace code

constexpr std::size_t partSize = 63;         ///< log bytes in a full part, from byte 1
constexpr std::size_t headerCountPlace = 33; ///< number of parts, 32 bits, most significant byte first
constexpr std::size_t lastPartDataPlace = 2; ///< behind its length byte
constexpr std::size_t lastPartSize = reportSize - lastPartDataPlace;

constexpr Milliseconds replyDelay = 1; ///< a host that acknowledges twice does it before the next part

Report bare(std::uint8_t replyCode)
{
    Report report{};
    report[0] = replyCode;
    return report;
}

} // namespace

LogServer::LogServer(const Options& unitOptions, Journal& unitJournal)
    : options(unitOptions), layout(findUnitModel(unitOptions.type)->layout), journal(unitJournal)
{
}

void LogServer::receive(Command command, const Report& report, Milliseconds now)
{
    if (command == Command::LogRequest) {
        checkPad("log-request-pad", logRequestPadError(report, layout));
        return start(report, now);
    }
    checkPad("log-reply-pad", logReplyPadError(report));
    if (command == Command::LogAcknowledge)
        takeAcknowledge(now);
    else
        takeResend(now);
}

void LogServer::checkPad(const char* what, std::optional<std::size_t> pad)
{
    if (pad)
        journal.addError(std::string(what) + " byte=" + std::to_string(*pad));
}

void LogServer::start(const Report& report, Milliseconds now)
{
    end();
    journal.add("log-request number=" + std::to_string(logRequestNumber(report, layout)));
    replies.clear();
    next = 0;
    acknowledges = 0;
    active = true;
    buildReplies();
    replyAt = replies.empty() ? never : now + replyDelay;
}

void LogServer::abandon()
{
    if (owed == Owed::Acknowledge && replies[next - 1].isLast)
        journal.addError("log-acknowledge-missing");
    end();
}

/// A new request may end a log without complaint: a host that missed a part asks again instead of
/// acknowledging.
void LogServer::end()
{
    if (active)
        journal.add("log-abandoned replies=" + std::to_string(next) +
                    " acknowledges=" + std::to_string(acknowledges));
    active = false;
    owed = Owed::Nothing;
    replyAt = never;
}

std::optional<Report> LogServer::takeReply()
{
    const Reply& reply = replies[next];
    ++next;
    owed = reply.owed;
    const bool goesOn = owed == Owed::Nothing && next < replies.size();
    replyAt = goesOn ? replyAt + replyDelay : never;
    journal.add(reply.line);
    if (reply.isLast && owed == Owed::Nothing)
        active = false;
    return reply.report;
}

void LogServer::takeAcknowledge(Milliseconds now)
{
    if (owed != Owed::Acknowledge)
        return journal.addError("log-acknowledge-unexpected");
    owed = Owed::Nothing;
    ++acknowledges;
    if (replies[next - 1].isLast) {
        active = false;
        journal.add("log-complete acknowledges=" + std::to_string(acknowledges));
    } else if (next < replies.size()) {
        replyAt = now + replyDelay;
    }
}

void LogServer::takeResend(Milliseconds now)
{
    if (owed == Owed::Nothing)
        return journal.addError("log-resend-unexpected");
    journal.add("log-resend");
    if (owed == Owed::Acknowledge)
        --next; // the same reply once more
    owed = Owed::Nothing;
    if (next < replies.size())
        replyAt = now + replyDelay;
}

void LogServer::buildReplies()
{
    if (options.faults.has(Fault::HeaderNeverComes))
        return;
    addUnknown(options.faults.argument(Fault::StrayReplies), Owed::Nothing);
    if (!options.log || options.faults.has(Fault::NoLog)) {
        replies.push_back({bare(code::noLog), Owed::Nothing, "log-none", true});
        return;
    }
    // One part holds 63 bytes, the last 62; there is always a last part, if only an empty one.
    const std::size_t size = options.log->size();
    const std::size_t fullParts = size > lastPartSize ? (size - lastPartSize + partSize - 1) / partSize : 0;
    addHeader(fullParts + 1);
    addUnknown(options.faults.argument(Fault::UnknownReplies), Owed::Resend);
    addParts(*options.log);
}

void LogServer::addHeader(std::size_t parts)
{
    std::size_t announced = parts + static_cast<std::size_t>(options.faults.argument(Fault::WrongCount));
    if (options.faults.has(Fault::ZeroParts))
        announced = 0;
    Report report = bare(code::header);
    const std::string digest = md5Text(*options.log);
    std::copy(digest.begin(), digest.end(), report.begin() + 1);
    for (std::size_t i = 0; i < 4; ++i)
        report[headerCountPlace + i] = static_cast<std::uint8_t>(announced >> (24 - 8 * i));
    replies.push_back({report, Owed::Acknowledge, "log-header parts=" + std::to_string(announced), false});
}

void LogServer::addParts(const std::vector<std::uint8_t>& log)
{
    if (options.faults.hasAt(Fault::StallsAfterPart, 0))
        return;
    std::span<const std::uint8_t> rest(log);
    int extra = options.faults.argument(Fault::TooManyParts);
    for (std::uint64_t number = 1;; ++number) {
        const bool isFull = rest.size() > lastPartSize || extra > 0;
        if (options.faults.hasAt(Fault::UnpluggedAtPart, number)) {
            replies.push_back(
                {std::nullopt, Owed::Nothing, "unplugged log-part=" + std::to_string(number), true});
            return;
        }
        Report report = bare(code::fullPart);
        if (rest.size() > lastPartSize) {
            std::copy_n(rest.begin(), partSize, report.begin() + 1);
            rest = rest.subspan(partSize);
        } else if (isFull) {
            --extra; // a part too many holds zeros
        } else {
            report = lastPart(rest);
        }
        replies.push_back({report, Owed::Acknowledge, "log-part number=" + std::to_string(number), !isFull});
        if (!isFull || options.faults.hasAt(Fault::StallsAfterPart, number))
            return;
    }
}

Report LogServer::lastPart(std::span<const std::uint8_t> data) const
{
    Report report = bare(code::lastPart);
    report[1] = static_cast<std::uint8_t>(data.size());
    if (options.faults.has(Fault::OverlongLastPart))
        report[1] = static_cast<std::uint8_t>(options.faults.argument(Fault::OverlongLastPart));
    std::copy(data.begin(), data.end(), report.begin() + lastPartDataPlace);
    return report;
}

void LogServer::addUnknown(int count, Owed owedFor)
{
    for (int i = 0; i < count; ++i)
        replies.push_back({bare(code::unknown), owedFor, "log-unknown-reply", false});
}

} // namespace virtualunit
