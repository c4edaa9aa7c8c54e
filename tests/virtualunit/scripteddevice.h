#pragma once

#include "virtualunit/hidapi/virtualbus.h"

#include <deque>
#include <vector>

/// A device that says what a test puts into its mouth. Touch it inside virtualbus::change() once it is
/// attached.
class ScriptedDevice : public virtualbus::Device
{
public:
    bool open(virtualbus::Milliseconds) override { return true; }
    void close(virtualbus::Milliseconds) override { ++closings; }
    virtualunit::VirtualUnit::Receipt write(std::span<const std::uint8_t> bytes,
                                            virtualbus::Milliseconds) override
    {
        written.emplace_back(bytes.begin(), bytes.end());
        return receipt;
    }
    std::optional<std::vector<std::uint8_t>> takeInput(virtualbus::Milliseconds) override
    {
        ++asks;
        if (input.empty())
            return std::nullopt;
        const std::vector<std::uint8_t> report = input.front();
        input.pop_front();
        return report;
    }

    std::deque<std::vector<std::uint8_t>> input;
    std::vector<std::vector<std::uint8_t>> written;
    virtualunit::VirtualUnit::Receipt receipt; ///< of every write
    int closings = 0;
    int asks = 0; ///< for input

    /// A call of another thread has come here and waits for something to change: it keeps the bus's lock till
    /// then.
    [[nodiscard]] bool keepsSomebodyWaiting() const
    {
        bool keeps = false;
        virtualbus::change([&] { keeps = asks > 0 || !written.empty(); });
        return keeps;
    }
};
