#pragma once

#include "virtualunit/hidapi/virtualbus.h"

#include <functional>

/// An HB4 that costs next to nothing: it answers immediately, checks nothing and stores nothing that it is
/// sent, so that the measurement covers only the program. The callbacks run under the bus's lock, on the
/// thread that makes the hidapi call.
class QuickUnit : public virtualbus::Device
{
public:
    static virtualbus::DeviceRecord record();

    std::function<void()> onRequest; ///< a transfer is requested and accepted
    std::function<void()> onDataPacket;
    std::function<void()> onFinalPacket; ///< the unit is silent afterwards
    std::function<void()> onLogPart;     ///< a part is handed over
    int logParts = 0;                    ///< number of log parts; the last one is empty

    [[nodiscard]] bool open(virtualbus::Milliseconds now) override;
    void close(virtualbus::Milliseconds now) override;
    [[nodiscard]] virtualunit::VirtualUnit::Receipt write(std::span<const std::uint8_t> bytes,
                                                          virtualbus::Milliseconds now) override;
    [[nodiscard]] std::optional<std::vector<std::uint8_t>> takeInput(virtualbus::Milliseconds now) override;

private:
    [[nodiscard]] std::vector<std::uint8_t> logPart();

    std::vector<std::uint8_t> answer; ///< empty: nothing to send
    int partsSent = 0;
};
