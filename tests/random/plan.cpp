#include "tests/random/plan.h"
#include "tests/support/models.h"

#include <QStringList>

#include <algorithm>
#include <array>

namespace {

using Way = Plan::Way;

template<typename Enum, std::size_t size>
QString nameIn(const std::array<const char*, size>& names, Enum value)
{
    return names.at(static_cast<std::size_t>(value));
}

QString nameOf(Way way)
{
    constexpr std::array names{"whole", "in chunks", "dripping", "redirected", "compressed", "overlong",
                               "cut",   "reset",     "silent",   "stalling",   "not found",  "html"};
    return nameIn(names, way);
}

QString nameOf(Plan::Catalogue catalogue)
{
    constexpr std::array names{"newer",  "same",  "older",     "newer updater",         "incomplete",
                               "broken", "empty", "oversized", "no path to change log", "no path to image"};
    return nameIn(names, catalogue);
}

QString fileText(const char* name, const QByteArray& content)
{
    return content.isNull() ? QString() : QString(", %1 of %2 bytes").arg(name).arg(content.size());
}

QString describe(const virtualunit::Options& unit)
{
    QString text = QString("  unit: %1, version %2, period %3 ms, accepts after %4 ms, installs in %5 ms")
                       .arg(models::of(unit.type).option)
                       .arg(unit.version)
                       .arg(unit.periodMs)
                       .arg(unit.acceptMs)
                       .arg(unit.installMs);
    text += unit.log ? QString(", log of %1 bytes").arg(unit.log->size()) : QString(", no log");
    if (unit.repeatsOutcome)
        text += ", repeats its outcome";
    if (unit.floodsLog)
        text += ", floods its log";
    for (int fault = 0; fault <= static_cast<int>(virtualunit::Fault::UnpluggedAtPart); ++fault)
        if (unit.faults.has(static_cast<virtualunit::Fault>(fault)))
            text += QString(", fault #%1:%2")
                        .arg(fault)
                        .arg(unit.faults.argument(static_cast<virtualunit::Fault>(fault)));
    return text;
}

} // namespace

QString nameOf(Plan::Act act)
{
    constexpr std::array names{
        "wait",  "connect",           "update", "log", "stop", "log key", "agree", "refuse", "escape",
        "close", "end of the session"};
    return nameIn(names, act);
}

bool Plan::isFaultless() const
{
    const auto harmless = [](Way way) { return way <= Way::redirected; };
    for (const virtualunit::Options& unit : units)
        for (int fault = 0; fault <= static_cast<int>(virtualunit::Fault::UnpluggedAtPart); ++fault)
            if (unit.faults.has(static_cast<virtualunit::Fault>(fault)) || unit.acceptMs > 0 ||
                unit.floodsLog)
                return false;
    return !units.empty() && busFault == BusFault::none && harmless(catalogueWay) && harmless(changeLogWay) &&
           harmless(imageWay) && catalogue <= Catalogue::newerUpdater && taken == Taken::none &&
           !fileSizeLimit;
}

QString Plan::dueOutcome() const
{
    // Else a slow machine may let it pass unread, or hear one deck only in a tick.
    const bool outcomeStays = std::all_of(units.begin(), units.end(), [this](const auto& unit) {
        return unit.repeatsOutcome || (unit.periodMs == 0 && !isPair());
    });
    if (user != "steady" || !isFaultless() || image.isEmpty() || !outcomeStays)
        return {};
    if (units.size() == 1 && models::of(units.front().type).isDeck())
        return {}; // one deck alone is none
    if (hasServiceFile || catalogue == Catalogue::newer)
        return "finished";
    return catalogue == Catalogue::newerUpdater ? "handed over" : "up to date";
}

std::optional<QByteArray> Plan::arrivingImage() const
{
    if (catalogue == Catalogue::noPathToImage)
        return std::nullopt;
    if (imageWay <= Way::redirected)
        return image;
    if (imageWay == Way::overlong) // nobody can tell
        return image.left(image.size() / 2);
    return std::nullopt;
}

QString Plan::describe() const
{
    QStringList lines{QString("seed %1: a %2 user, a turn every %3 ms, %4 turns")
                          .arg(seed)
                          .arg(user)
                          .arg(paceMs)
                          .arg(turns.size())};
    for (const virtualunit::Options& unit : units)
        lines += ::describe(unit);
    if (units.empty())
        lines += "  no unit";
    constexpr std::array busFaults{"none", "unplugged", "writes fail", "reads fail", "cannot be opened"};
    if (busFault != BusFault::none)
        lines += QString("  bus: unit %1 %2 (%3) before turn %4")
                     .arg(busFaultUnit)
                     .arg(nameIn(busFaults, busFault))
                     .arg(busFaultCount)
                     .arg(busFaultTurn);
    lines += QString("  server: catalogue %1, %2; change log %3; image of %4 bytes, %5")
                 .arg(nameOf(catalogue), nameOf(catalogueWay), nameOf(changeLogWay))
                 .arg(image.size())
                 .arg(nameOf(imageWay));
    constexpr std::array names{"nothing", "the image's name", "the download's name", "the backup's name"};
    lines += QString("  disk: a folder has taken %1").arg(nameIn(names, taken)) +
             fileText("image", oldImage) + fileText("download", oldDownload) + fileText("backup", oldBackup) +
             (hasServiceFile ? ", a service file" : "") +
             (fileSizeLimit ? QString(", full after %1 bytes").arg(*fileSizeLimit) : QString());
    return lines.join('\n');
}
