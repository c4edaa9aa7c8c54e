#pragma once

#include "unit/unittype.h"
#include "virtualunit/virtualunit.h"

#include <optional>
#include <span>
#include <string>
#include <vector>

namespace virtualbus {

using virtualunit::Milliseconds;
using virtualunit::never;

/// What an enumeration says of a device. An absent string is NULL in the record.
struct DeviceRecord
{
    std::uint16_t vendorId = unitVendorId;
    std::uint16_t productId = 0;
    bool hasPath = true; ///< false: NULL in the record, so that it cannot be opened
    std::optional<std::string> product;
    std::optional<std::string> serial = "0001";
    std::optional<std::string> manufacturer = "Talvex";
};

/// Something that can be attached to the virtual bus. Every method is called under the bus's lock, from
/// whichever thread makes the hidapi call, and must not call into the bus. `now` is in ms of CLOCK_MONOTONIC.
class Device
{
public:
    virtual ~Device() = default;

    /// False: the device cannot be opened.
    [[nodiscard]] virtual bool open(Milliseconds now) = 0;

    virtual void close(Milliseconds now) = 0;

    /// The bytes given to hid_write, the report ID first. Not accepted: hid_write returns -1, after the given
    /// time.
    [[nodiscard]] virtual virtualunit::VirtualUnit::Receipt write(std::span<const std::uint8_t> bytes,
                                                                  Milliseconds now) = 0;

    /// The oldest input report that is due and not yet taken, 0 to 64 bytes, or nothing.
    [[nodiscard]] virtual std::optional<std::vector<std::uint8_t>> takeInput(Milliseconds now) = 0;

    /// A report that the device sends only to flood its host, if just this many are waiting there.
    [[nodiscard]] virtual std::optional<std::vector<std::uint8_t>> takeFlood(std::size_t /*waiting*/)
    {
        return std::nullopt;
    }

    /// When takeInput() may have something next, or `never`; a reader that waits wakes then.
    [[nodiscard]] virtual Milliseconds nextEventAt() const { return never; }

    /// False: reads return what was queued before, then -1; writes return -1; it is no longer listed.
    [[nodiscard]] virtual bool isPluggedIn() const { return true; }
};

} // namespace virtualbus
