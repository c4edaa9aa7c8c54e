#pragma once

#include "unit/unittype.h"
#include "virtualunit/hidapi/virtualbus.h"

#include <deque>
#include <optional>
#include <string>
#include <vector>

using Bytes = std::vector<std::uint8_t>;

/// An input report of 64 bytes whose status byte is `status`; everything else is zero.
[[nodiscard]] Bytes statusReport(ReportLayout layout, std::uint8_t status);

/// A unit on the virtual bus that says what a test tells it to say, and nothing by itself. What is written to
/// it is taken; the bus keeps the bytes.
class ScriptedUnit : public virtualbus::Device
{
public:
    /// Plugs in a unit of this model, listed with its own product string, or with the one given.
    [[nodiscard]] static std::shared_ptr<ScriptedUnit> plugIn(UnitType type);
    [[nodiscard]] static std::shared_ptr<ScriptedUnit> plugIn(UnitType type,
                                                              std::optional<std::string> product);

    /// The same, listed without a path to open it by.
    [[nodiscard]] static std::shared_ptr<ScriptedUnit> plugInWithoutPath(UnitType type);

    /// Queues an input report of 0 to 64 bytes. What is said before the unit is opened waits for the opening.
    void say(const Bytes& report);
    void sayStatus(std::uint8_t status) { say(statusReport(layout, status)); }

    [[nodiscard]] std::string path() const { return "virtual:" + std::to_string(number); }

    bool open(virtualbus::Milliseconds) override { return true; }
    void close(virtualbus::Milliseconds) override {}
    virtualunit::VirtualUnit::Receipt write(std::span<const std::uint8_t>, virtualbus::Milliseconds) override;
    std::optional<Bytes> takeInput(virtualbus::Milliseconds) override;

    int number = 0; ///< on the bus
    ReportLayout layout{};

private:
    [[nodiscard]] static std::shared_ptr<ScriptedUnit> attach(UnitType type, virtualbus::DeviceRecord record);

    std::deque<Bytes> reports; ///< touched under the bus's lock
};
