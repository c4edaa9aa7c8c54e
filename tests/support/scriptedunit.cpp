#include "tests/support/scriptedunit.h"

#include "virtualunit/identity.h"

#include <utility>

Bytes statusReport(ReportLayout layout, std::uint8_t status)
{
    Bytes report(64, 0);
    report[layout.headerOffset] = status;
    return report;
}

std::shared_ptr<ScriptedUnit> ScriptedUnit::plugIn(UnitType type)
{
    return plugIn(type, std::string(virtualunit::identityOf(type).product));
}

std::shared_ptr<ScriptedUnit> ScriptedUnit::plugIn(UnitType type, std::optional<std::string> product)
{
    virtualbus::DeviceRecord record;
    record.product = std::move(product);
    return attach(type, record);
}

std::shared_ptr<ScriptedUnit> ScriptedUnit::plugInWithoutPath(UnitType type)
{
    virtualbus::DeviceRecord record;
    record.product = std::string(virtualunit::identityOf(type).product);
    record.hasPath = false;
    return attach(type, record);
}

std::shared_ptr<ScriptedUnit> ScriptedUnit::attach(UnitType type, virtualbus::DeviceRecord record)
{
    auto unit = std::make_shared<ScriptedUnit>();
    unit->layout = findUnitModel(type)->layout;
    record.productId = findUnitModel(type)->productId;
    unit->number = virtualbus::attach(record, unit);
    return unit;
}

void ScriptedUnit::say(const Bytes& report)
{
    virtualbus::change([&] { reports.push_back(report); });
}

virtualunit::VirtualUnit::Receipt ScriptedUnit::write(std::span<const std::uint8_t>, virtualbus::Milliseconds)
{
    return {};
}

std::optional<Bytes> ScriptedUnit::takeInput(virtualbus::Milliseconds)
{
    if (reports.empty())
        return std::nullopt;
    Bytes oldest = std::move(reports.front());
    reports.pop_front();
    return oldest;
}
