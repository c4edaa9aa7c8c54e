#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace virtualunit {

/// Ways in which a unit misbehaves; several can be set at once. `N` is the fault's argument.
enum class Fault {
    // while a unit is found and opened
    CannotOpen,       ///< is listed, cannot be opened
    NoPermission,     ///< is listed without any string, cannot be opened
    NoVersionReport,  ///< sends nothing by itself before the first report it is given
    TakesNothing,     ///< every write fails, after N ms
    TakesNothingFrom, ///< TakesNothing from output report N on, counted from 1; noted in the journal
    UnpluggedAt,      ///< vanishes when output report N is written to it, counted from 1
    // while an image is transferred and installed
    NeverAnswers,       ///< a request is received and not answered
    RefusesTimeout,     ///< a request is answered with "timed out"
    RefusesSkipped,     ///< a request is answered with "packets skipped"
    LosesPacket,        ///< packet N never arrives
    WrongDigest,        ///< the image is reported as damaged, whether it is or not
    RejectsImage,       ///< the image is refused instead of installed
    InstallationFails,  ///< the image is refused at the end of the installation
    SilentInstallation, ///< one report says that the installation has begun, nothing follows
    // while a log is served
    NoLog,            ///< there is no log
    HeaderNeverComes, ///< a log request is received and not answered
    WrongCount,       ///< the header announces N more parts than are sent
    TooManyParts,     ///< N more full parts than announced are sent, before the last part
    ZeroParts,        ///< the header announces 0 parts, and all are sent
    StrayReplies,     ///< N replies of an unknown kind precede the header
    UnknownReplies,   ///< N replies of an unknown kind, one for each resend request, precede the first part
    StallsAfterPart,  ///< nothing follows part N
    OverlongLastPart, ///< the last part claims to hold N bytes
    UnpluggedAtPart,  ///< vanishes instead of sending part N, counted from 1
};

/// The faults of one unit, each with its argument.
class Faults
{
public:
    void add(Fault fault, int argument = 0) { arguments[fault] = argument; }

    /// Accepts "name" or "name:N". Returns what is wrong with the text, or nothing.
    [[nodiscard]] std::optional<std::string> addByName(std::string_view text);

    [[nodiscard]] bool has(Fault fault) const { return arguments.contains(fault); }

    /// N of the fault, or 0 when the fault is not set.
    [[nodiscard]] int argument(Fault fault) const { return has(fault) ? arguments.at(fault) : 0; }

    /// Whether the fault is set with exactly this N.
    [[nodiscard]] bool hasAt(Fault fault, std::uint64_t n) const
    {
        return has(fault) && static_cast<std::uint64_t>(argument(fault)) == n;
    }

private:
    std::map<Fault, int> arguments;
};

} // namespace virtualunit
