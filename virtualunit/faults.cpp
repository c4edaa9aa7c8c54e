#include "virtualunit/faults.h"

#include "virtualunit/numbertext.h"

#include <array>

namespace virtualunit {
namespace {

enum class Argument { None, Optional, Required };

struct FaultName
{
    std::string_view name;
    Fault fault;
    Argument argument = Argument::None;
    int byDefault = 0;
};

constexpr std::array faultNames{
    FaultName{"cannot-open", Fault::CannotOpen},
    FaultName{"no-permission", Fault::NoPermission},
    FaultName{"no-version-report", Fault::NoVersionReport},
    FaultName{"takes-nothing", Fault::TakesNothing, Argument::Optional, 1000},
    FaultName{"takes-nothing-from", Fault::TakesNothingFrom, Argument::Required},
    FaultName{"unplugged-at", Fault::UnpluggedAt, Argument::Required},
    FaultName{"never-answers", Fault::NeverAnswers},
    FaultName{"refuses-timeout", Fault::RefusesTimeout},
    FaultName{"refuses-skipped", Fault::RefusesSkipped},
    FaultName{"loses-packet", Fault::LosesPacket, Argument::Required},
    FaultName{"wrong-digest", Fault::WrongDigest},
    FaultName{"rejects-image", Fault::RejectsImage},
    FaultName{"installation-fails", Fault::InstallationFails},
    FaultName{"silent-installation", Fault::SilentInstallation},
    FaultName{"no-log", Fault::NoLog},
    FaultName{"header-never-comes", Fault::HeaderNeverComes},
    FaultName{"wrong-count", Fault::WrongCount, Argument::Optional, 1},
    FaultName{"too-many-parts", Fault::TooManyParts, Argument::Optional, 1},
    FaultName{"zero-parts", Fault::ZeroParts},
    FaultName{"stray-replies", Fault::StrayReplies, Argument::Required},
    FaultName{"unknown-replies", Fault::UnknownReplies, Argument::Required},
    FaultName{"stalls-after-part", Fault::StallsAfterPart, Argument::Required},
    FaultName{"overlong-last-part", Fault::OverlongLastPart, Argument::Optional, 255},
    FaultName{"unplugged-at-part", Fault::UnpluggedAtPart, Argument::Required},
};

} // namespace

std::optional<std::string> Faults::addByName(std::string_view text)
{
    const std::size_t colon = text.find(':');
    const std::string_view name = text.substr(0, colon);
    for (const FaultName& known : faultNames) {
        if (known.name != name)
            continue;
        const bool given = colon != std::string_view::npos;
        if (given == (known.argument == Argument::None) && known.argument != Argument::Optional)
            return "fault " + std::string(name) + (given ? " takes no number" : " needs a number");
        const std::optional<int> number = given ? readNumber(text.substr(colon + 1)) : known.byDefault;
        if (!number)
            return "fault " + std::string(text) + ": not a number";
        add(known.fault, *number);
        return std::nullopt;
    }
    return "unknown fault " + std::string(text);
}

} // namespace virtualunit
