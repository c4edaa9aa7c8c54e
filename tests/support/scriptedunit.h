#pragma once

#include "tests/support/models.h"
#include "virtualunit/hidapi/virtualbus.h"

#include <QStringList>

#include <hidapi.h>

#include <deque>
#include <functional>
#include <optional>
#include <string>
#include <vector>

using Bytes = std::vector<std::uint8_t>;

/// A unit on the virtual bus that sends only what a test tells it to send. It accepts everything written to
/// it; the bus records the bytes. Once the unit is plugged in, its public members may only be accessed under
/// the bus's lock.
class ScriptedUnit : public virtualbus::Device
{
public:
    /// Output report n is answered with group n; reports after the last group are not answered.
    using Answers = std::vector<std::vector<QByteArray>>;
    explicit ScriptedUnit(const Answers& script = {}) : answers(script.begin(), script.end()) {}

    /// Plugs in a unit of this model, listed with the model's product string, or with the given one.
    [[nodiscard]] static std::shared_ptr<ScriptedUnit> plugIn(UnitType type);
    [[nodiscard]] static std::shared_ptr<ScriptedUnit> plugIn(UnitType type,
                                                              std::optional<std::string> product);

    /// The same, listed without a path to open it by.
    [[nodiscard]] static std::shared_ptr<ScriptedUnit> plugInWithoutPath(UnitType type);

    /// The same, with a first report of zeros.
    static std::shared_ptr<ScriptedUnit> plugInReporting(UnitType type);

    /// Plugs in an existing unit.
    static void plugIn(const std::shared_ptr<ScriptedUnit>& unit, UnitType type);

    /// Queues an input report of 0 to 64 bytes. A report queued before the unit is opened is kept until
    /// then. Takes the bus's lock.
    void say(const Bytes& report);

    /// Queues an input report of 64 bytes whose status byte is `status`; all other bytes are zero.
    void sayStatus(std::uint8_t status);

    /// Opens the unit and returns its handle. Aborts the test program if that fails.
    [[nodiscard]] hid_device* opened() const;

    [[nodiscard]] std::string path() const { return "virtual:" + std::to_string(number); }

    /// True if a call from another thread has reached this unit and is waiting for a change; it holds the
    /// bus's lock until then.
    [[nodiscard]] bool keepsSomebodyWaiting() const;

    bool open(virtualbus::Milliseconds) override { return true; }
    void close(virtualbus::Milliseconds) override { ++closings; }
    virtualunit::VirtualUnit::Receipt write(std::span<const std::uint8_t> bytes,
                                            virtualbus::Milliseconds) override;
    std::optional<Bytes> takeInput(virtualbus::Milliseconds) override;

    /// Queues an input report, padded with zeros to 64 bytes.
    void reply(const QByteArray& report);

    int number = 0; ///< on the bus
    ReportLayout layout{};
    std::deque<Bytes> input; ///< queued reports
    std::vector<Bytes> written;
    QByteArray saysForEver;                      ///< sent whenever nothing else is queued
    std::function<void()> whenScriptIsOver;      ///< called for each output report after the last answer
    virtualunit::VirtualUnit::Receipt receipt{}; ///< of every write
    int closings = 0;

private:
    static void attach(const std::shared_ptr<ScriptedUnit>& unit, UnitType type,
                       const virtualbus::DeviceRecord& record);

    std::deque<std::vector<QByteArray>> answers;
    int asks = 0; ///< requests for input so far
    bool saidOne = false;
};

/// A report as a unit sends it unprompted, with different values at the two offsets where a model may report
/// its version.
[[nodiscard]] Bytes firstReport(std::uint8_t byte62, std::uint8_t byte63);

/// The hidapi calls, except those of the search, one line each.
[[nodiscard]] QStringList callsToUnits();

/// The paths by which units were opened, or not, in order.
[[nodiscard]] std::vector<std::string> openings();

[[nodiscard]] inline Bytes bytesOf(const QByteArray& bytes)
{
    return {bytes.begin(), bytes.end()};
}
