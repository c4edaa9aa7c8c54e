#include "tests/support/scriptedunit.h"

#include <utility>

namespace {

virtualbus::DeviceRecord recordOf(UnitType type, std::optional<std::string> product)
{
    virtualbus::DeviceRecord record;
    record.productId = static_cast<std::uint16_t>(models::of(type).productId);
    record.product = std::move(product);
    return record;
}

} // namespace

std::shared_ptr<ScriptedUnit> ScriptedUnit::plugIn(UnitType type)
{
    return plugIn(type, models::of(type).product());
}

std::shared_ptr<ScriptedUnit> ScriptedUnit::plugIn(UnitType type, std::optional<std::string> product)
{
    auto unit = std::make_shared<ScriptedUnit>();
    attach(unit, type, recordOf(type, std::move(product)));
    return unit;
}

std::shared_ptr<ScriptedUnit> ScriptedUnit::plugInWithoutPath(UnitType type)
{
    auto unit = std::make_shared<ScriptedUnit>();
    virtualbus::DeviceRecord record = recordOf(type, models::of(type).product());
    record.hasPath = false;
    attach(unit, type, record);
    return unit;
}

std::shared_ptr<ScriptedUnit> ScriptedUnit::plugInReporting(UnitType type)
{
    auto unit = plugIn(type);
    unit->say(Bytes(64, 0));
    return unit;
}

void ScriptedUnit::plugIn(const std::shared_ptr<ScriptedUnit>& unit, UnitType type)
{
    attach(unit, type, recordOf(type, models::of(type).product()));
}

void ScriptedUnit::attach(const std::shared_ptr<ScriptedUnit>& unit, UnitType type,
                          const virtualbus::DeviceRecord& record)
{
    unit->layout = models::of(type).layout;
    unit->number = virtualbus::attach(record, unit);
}

hid_device* ScriptedUnit::opened() const
{
    hid_device* const handle = hid_open_path(path().c_str());
    if (handle == nullptr)
        qFatal("cannot open %s", path().c_str());
    return handle;
}

void ScriptedUnit::say(const Bytes& report)
{
    virtualbus::change([&] { input.push_back(report); });
}

void ScriptedUnit::sayStatus(std::uint8_t status)
{
    Bytes report(64, 0);
    report[layout.headerOffset] = status;
    say(report);
}

void ScriptedUnit::reply(const QByteArray& report)
{
    input.push_back(bytesOf(report.leftJustified(64, '\0')));
}

bool ScriptedUnit::keepsSomebodyWaiting() const
{
    bool keeps = false;
    virtualbus::change([&] { keeps = asks > 0 || !written.empty(); });
    return keeps;
}

virtualunit::VirtualUnit::Receipt ScriptedUnit::write(std::span<const std::uint8_t> bytes,
                                                      virtualbus::Milliseconds)
{
    written.emplace_back(bytes.begin(), bytes.end());
    if (!answers.empty()) {
        for (const QByteArray& report : answers.front())
            reply(report);
        answers.pop_front();
    } else if (whenScriptIsOver) {
        whenScriptIsOver();
    }
    return receipt;
}

std::optional<Bytes> ScriptedUnit::takeInput(virtualbus::Milliseconds)
{
    ++asks;
    saidOne = !saidOne; // the bus asks until there is nothing more
    if (input.empty() && saidOne && !saysForEver.isEmpty())
        reply(saysForEver);
    if (input.empty())
        return std::nullopt;
    Bytes oldest = std::move(input.front());
    input.pop_front();
    return oldest;
}

Bytes firstReport(std::uint8_t byte62, std::uint8_t byte63)
{
    Bytes report(64, 0x33);
    report[62] = byte62;
    report[63] = byte63;
    return report;
}

QStringList callsToUnits()
{
    QStringList lines;
    for (const virtualbus::Call& call : virtualbus::calls())
        if (!call.function.starts_with("hid_enumerate") && !call.function.starts_with("hid_free"))
            lines += QString::fromStdString(lineOf(call));
    return lines;
}

std::vector<std::string> openings()
{
    std::vector<std::string> paths;
    for (const virtualbus::Call& call : virtualbus::callsOf("hid_open_path"))
        paths.push_back(call.path);
    return paths;
}
