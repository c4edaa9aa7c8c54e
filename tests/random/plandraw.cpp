#include "tests/random/plan.h"

#include "tests/random/draw.h"
#include "tests/support/models.h"

#include <algorithm>

namespace {

using virtualunit::Fault;

UnitType deckOf(Draw& draw)
{
    std::vector<UnitType> lefts;
    for (const models::Connection& connection : models::connections())
        if (connection.units.size() == 2)
            lefts.push_back(connection.units.first().type);
    return lefts.at(static_cast<std::size_t>(draw.below(static_cast<int>(lefts.size()))));
}

UnitType singleModel(Draw& draw)
{
    for (;;) {
        const auto type = static_cast<UnitType>(draw.below(models::count));
        if (!models::of(type).isDeck())
            return type;
    }
}

virtualunit::Options healthyUnit(Draw& draw, UnitType type)
{
    virtualunit::Options unit;
    unit.type = type;
    unit.version = static_cast<std::uint8_t>(draw.between(1, 250));
    unit.periodMs = draw.weighted<int>({{0, 4}, {8, 1}, {20, 3}, {40, 1}});
    unit.installMs = draw.between(0, 20);
    unit.lowNibble = static_cast<std::uint8_t>(draw.below(16));
    unit.repeatsOutcome = draw.chance(15);
    if (draw.chance(80)) {
        const QByteArray log =
            draw.bytes(draw.weighted<int>({{0, 1}, {draw.between(1, 62), 2}, {draw.below(1500), 5}}));
        unit.log.emplace(log.begin(), log.end());
    }
    return unit;
}

void addUnitFault(Draw& draw, virtualunit::Options& unit, int packets)
{
    struct Row
    {
        Fault fault;
        int lowest;
        int highest;
    };
    const Row row = draw.weighted<Row>({{{Fault::CannotOpen, 0, 0}, 1},
                                        {{Fault::NoPermission, 0, 0}, 1},
                                        {{Fault::NoVersionReport, 0, 0}, 1},
                                        {{Fault::TakesNothing, 1, 15}, 2},
                                        {{Fault::UnpluggedAt, 1, packets + 2}, 5},
                                        {{Fault::NeverAnswers, 0, 0}, 2},
                                        {{Fault::RefusesTimeout, 0, 0}, 6},
                                        {{Fault::RefusesSkipped, 0, 0}, 6},
                                        {{Fault::LosesPacket, 1, packets}, 6},
                                        {{Fault::WrongDigest, 0, 0}, 6},
                                        {{Fault::RejectsImage, 0, 0}, 6},
                                        {{Fault::InstallationFails, 0, 0}, 4},
                                        {{Fault::SilentInstallation, 0, 0}, 2},
                                        {{Fault::NoLog, 0, 0}, 2},
                                        {{Fault::HeaderNeverComes, 0, 0}, 1},
                                        {{Fault::WrongCount, 1, 9}, 2},
                                        {{Fault::TooManyParts, 1, 9}, 2},
                                        {{Fault::ZeroParts, 0, 0}, 2},
                                        {{Fault::StrayReplies, 1, 20}, 2},
                                        {{Fault::UnknownReplies, 1, 20}, 2},
                                        {{Fault::StallsAfterPart, 0, 9}, 1},
                                        {{Fault::OverlongLastPart, 0, 255}, 2},
                                        {{Fault::UnpluggedAtPart, 1, 9}, 2}});
    unit.faults.add(row.fault, draw.between(row.lowest, row.highest));
}

void drawUnits(Draw& draw, Plan& plan, bool healthy)
{
    const int packets = plan.image.size() / 60 + 1;
    const int kind = draw.below(100);
    if (kind < 22) { // both decks of a player
        const UnitType left = deckOf(draw);
        plan.units = {healthyUnit(draw, left), healthyUnit(draw, static_cast<UnitType>(left + 1))};
        plan.units[1].periodMs = plan.units[0].periodMs;
        plan.units[1].installMs = plan.units[0].installMs;
        plan.units[1].repeatsOutcome = plan.units[0].repeatsOutcome;
    } else if (healthy || kind < 95) {
        plan.units = {healthyUnit(draw, singleModel(draw))};
    } else if (kind < 98) { // one deck alone
        plan.units = {healthyUnit(draw, deckOf(draw))};
    }
    if (healthy || plan.units.empty() || draw.chance(20))
        return;
    virtualunit::Options& unit =
        plan.units[static_cast<std::size_t>(draw.below(static_cast<int>(plan.units.size())))];
    for (int count = draw.weighted<int>({{1, 5}, {2, 1}}); count > 0; --count)
        addUnitFault(draw, unit, packets);
    unit.acceptMs = draw.weighted<int>({{0, 3}, {draw.between(1, 60), 1}});
    unit.floodsLog = draw.chance(10);
}

void drawBusFault(Draw& draw, Plan& plan)
{
    using BusFault = Plan::BusFault;
    if (plan.units.empty() || !draw.chance(20))
        return;
    plan.busFault =
        draw.oneOf({BusFault::unplug, BusFault::failWrites, BusFault::failReads, BusFault::failOpens});
    plan.busFaultUnit = draw.below(static_cast<int>(plan.units.size()));
    plan.busFaultTurn = plan.busFault == BusFault::failOpens ? 0 : draw.between(0, 150);
    plan.busFaultCount = draw.between(1, 4);
}

Plan::Way faultyWay(Draw& draw)
{
    using Way = Plan::Way;
    return draw.weighted<Way>({{Way::compressed, 1},
                               {Way::overlong, 1},
                               {Way::cut, 2},
                               {Way::reset, 2},
                               {Way::silent, 1},
                               {Way::stalling, 1},
                               {Way::notFound, 1},
                               {Way::html, 2}});
}

void drawServer(Draw& draw, Plan& plan, bool healthy)
{
    using Way = Plan::Way;
    using Kind = Plan::Catalogue;
    plan.catalogue =
        draw.weighted<Kind>({{Kind::newer, 14}, {Kind::same, 2}, {Kind::older, 1}, {Kind::newerUpdater, 1}});
    const auto harmless = [&draw] {
        return draw.weighted<Way>(
            {{Way::whole, 6}, {Way::inChunks, 1}, {Way::dripping, 1}, {Way::redirected, 1}});
    };
    plan.catalogueWay = harmless();
    plan.changeLogWay = harmless();
    plan.imageWay = harmless();
    if (healthy || draw.chance(50))
        return;
    // One thing goes wrong: what comes behind it would not be asked for any more.
    switch (draw.below(6)) {
    case 0:
        plan.catalogue = draw.oneOf({Kind::incomplete, Kind::broken, Kind::empty, Kind::oversized,
                                     Kind::noPathToChangeLog, Kind::noPathToImage});
        break;
    case 1:
        plan.catalogueWay = faultyWay(draw);
        break;
    case 2:
        plan.changeLogWay = faultyWay(draw);
        break;
    default:
        plan.catalogue = Kind::newer;
        plan.imageWay = faultyWay(draw);
    }
}

void drawDisk(Draw& draw, Plan& plan, bool healthy)
{
    plan.hasServiceFile = draw.chance(15);
    if (draw.chance(60))
        plan.oldImage = "old image " + draw.bytes(draw.below(200));
    if (draw.chance(40))
        plan.oldBackup = "old backup " + draw.bytes(draw.below(200));
    if (draw.chance(15))
        plan.oldDownload = "half a download " + draw.bytes(draw.below(200));
    if (healthy || draw.chance(75))
        return;
    plan.taken =
        draw.oneOf({Plan::Taken::none, Plan::Taken::image, Plan::Taken::download, Plan::Taken::backup});
    if (plan.taken == Plan::Taken::none || draw.chance(20))
        plan.fileSizeLimit = draw.below(std::max(1, plan.image.size()));
}

/// A user who wants the update and does what is asked; presses elsewhere do not harm.
Plan::Act steadyAct(Draw& draw)
{
    using Act = Plan::Act;
    return draw.weighted<Act>({{Act::wait, 30},
                               {Act::connect, 20},
                               {Act::update, 20},
                               {Act::agree, 25},
                               {Act::log, 3},
                               {Act::stop, 2}});
}

/// A support engineer who fetches the log.
Plan::Act engineerAct(Draw& draw)
{
    using Act = Plan::Act;
    return draw.weighted<Act>({{Act::wait, 40},
                               {Act::connect, 15},
                               {Act::logKey, 15},
                               {Act::log, 15},
                               {Act::agree, 10},
                               {Act::refuse, 10},
                               {Act::stop, 1}});
}

/// Somebody who presses everything, at once and twice.
Plan::Act restlessAct(Draw& draw)
{
    using Act = Plan::Act;
    return draw.weighted<Act>({{Act::wait, 10},
                               {Act::connect, 15},
                               {Act::update, 15},
                               {Act::log, 10},
                               {Act::stop, 6},
                               {Act::logKey, 8},
                               {Act::agree, 15},
                               {Act::refuse, 6},
                               {Act::escape, 6},
                               {Act::close, 1},
                               {Act::endSession, 1}});
}

void drawUser(Draw& draw, Plan& plan)
{
    const int kind = draw.below(100);
    plan.user = kind < 55 ? "steady" : kind < 75 ? "engineer" : "restless";
    plan.paceMs = draw.between(1, 5);
    const int count = kind < 75 ? 1500 : draw.between(5, 400);
    for (int i = 0; i < count; ++i)
        plan.turns.push_back(kind < 55 ? steadyAct(draw) : kind < 75 ? engineerAct(draw) : restlessAct(draw));
}

} // namespace

Plan drawPlan(std::uint64_t seed)
{
    Draw draw(seed);
    Plan plan;
    plan.seed = seed;
    const bool healthy = draw.chance(35);
    plan.image = draw.bytes(draw.weighted<int>({{draw.between(1, 200), 3},
                                                {60 * draw.between(1, 50), 2},
                                                {draw.between(200, 6000), 8},
                                                {draw.between(6000, 40000), 1}}));
    if (!healthy && draw.chance(2))
        plan.image = "";
    drawUnits(draw, plan, healthy);
    drawServer(draw, plan, healthy);
    drawDisk(draw, plan, healthy);
    if (!healthy)
        drawBusFault(draw, plan);
    drawUser(draw, plan);
    return plan;
}
