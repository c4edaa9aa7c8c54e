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
        return {};
    }
    std::optional<std::vector<std::uint8_t>> takeInput(virtualbus::Milliseconds) override
    {
        if (input.empty())
            return std::nullopt;
        const std::vector<std::uint8_t> report = input.front();
        input.pop_front();
        return report;
    }

    std::deque<std::vector<std::uint8_t>> input;
    std::vector<std::vector<std::uint8_t>> written;
    int closings = 0;
};
