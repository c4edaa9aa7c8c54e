#pragma once

#include "virtualunit/hidapi/device.h"

namespace virtualbus {

/// A virtual unit on the virtual bus.
class UnitDevice : public Device
{
public:
    explicit UnitDevice(const virtualunit::Options& options) : unit(options) {}

    bool open(Milliseconds now) override { return unit.open(now); }
    void close(Milliseconds now) override { unit.close(now); }
    virtualunit::VirtualUnit::Receipt write(std::span<const std::uint8_t> bytes, Milliseconds now) override
    {
        return unit.receive(bytes, now);
    }
    std::optional<std::vector<std::uint8_t>> takeInput(Milliseconds now) override
    {
        return bytesOf(unit.takeInput(now));
    }
    std::optional<std::vector<std::uint8_t>> takeFlood(std::size_t waiting) override
    {
        return bytesOf(unit.takeFlood(waiting));
    }
    [[nodiscard]] Milliseconds nextEventAt() const override { return unit.nextEventAt(); }
    [[nodiscard]] bool isPluggedIn() const override { return unit.isPluggedIn(); }

    virtualunit::VirtualUnit unit;

private:
    [[nodiscard]] static std::optional<std::vector<std::uint8_t>>
    bytesOf(const std::optional<virtualunit::Report>& report)
    {
        if (!report)
            return std::nullopt;
        return std::vector<std::uint8_t>(report->begin(), report->end());
    }
};

/// What an enumeration says about a unit with these options: a host without permission, or one that finds no
/// product string, gets none of the strings.
[[nodiscard]] inline DeviceRecord recordOf(const virtualunit::Options& options)
{
    DeviceRecord record;
    record.productId = findUnitModel(options.type)->productId;
    record.product = virtualunit::productOf(options);
    if (!record.product)
        record.serial = std::nullopt;
    if (!record.product || !options.hasManufacturer)
        record.manufacturer = std::nullopt;
    return record;
}

} // namespace virtualbus
