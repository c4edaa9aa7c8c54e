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

/// A unit on the virtual bus that says what a test tells it to say, and nothing by itself. What is written to
/// it is taken; the bus keeps the bytes. What is public here is touched under the bus's lock once the unit is
/// plugged in.
class ScriptedUnit : public virtualbus::Device
{
public:
    /// Output report n is answered with group n, and those behind the last not at all.
    using Answers = std::vector<std::vector<QByteArray>>;
    explicit ScriptedUnit(const Answers& script = {}) : answers(script.begin(), script.end()) {}

    /// Plugs in a unit of this model, listed with its own product string, or with the one given.
    [[nodiscard]] static std::shared_ptr<ScriptedUnit> plugIn(UnitType type);
    [[nodiscard]] static std::shared_ptr<ScriptedUnit> plugIn(UnitType type,
                                                              std::optional<std::string> product);

    /// The same, listed without a path to open it by.
    [[nodiscard]] static std::shared_ptr<ScriptedUnit> plugInWithoutPath(UnitType type);

    /// Plugs this one in.
    static void plugIn(const std::shared_ptr<ScriptedUnit>& unit, UnitType type);

    /// Queues an input report of 0 to 64 bytes. What is said before the unit is opened waits for the opening.
    /// Takes the bus's lock.
    void say(const Bytes& report);

    /// Says an input report of 64 bytes whose status byte is `status`; everything else is zero.
    void sayStatus(std::uint8_t status);

    /// A handle of it. Ends the test where there is none.
    [[nodiscard]] hid_device* opened() const;

    [[nodiscard]] std::string path() const { return "virtual:" + std::to_string(number); }

    /// A call of another thread has come here and waits for something to change: it keeps the bus's lock till
    /// then.
    [[nodiscard]] bool keepsSomebodyWaiting() const;

    bool open(virtualbus::Milliseconds) override { return true; }
    void close(virtualbus::Milliseconds) override { ++closings; }
    virtualunit::VirtualUnit::Receipt write(std::span<const std::uint8_t> bytes,
                                            virtualbus::Milliseconds) override;
    std::optional<Bytes> takeInput(virtualbus::Milliseconds) override;

    /// Makes an input report of 64 bytes, padded with 0, due.
    void reply(const QByteArray& report);

    int number = 0; ///< on the bus
    ReportLayout layout{};
    std::deque<Bytes> input; ///< reports that are due
    std::vector<Bytes> written;
    QByteArray saysForEver;                      ///< said whenever there is nothing else to say
    std::function<void()> whenScriptIsOver;      ///< called at each output report behind the answers
    virtualunit::VirtualUnit::Receipt receipt{}; ///< of every write
    int closings = 0;

private:
    static void attach(const std::shared_ptr<ScriptedUnit>& unit, UnitType type,
                       const virtualbus::DeviceRecord& record);

    std::deque<std::vector<QByteArray>> answers;
    int asks = 0; ///< for input
    bool saidOne = false;
};

/// A report as a unit sends it by itself: both places where a model may keep its version are told apart.
[[nodiscard]] Bytes firstReport(std::uint8_t byte62, std::uint8_t byte63);

/// The hidapi calls but for those of the search, each as one line.
[[nodiscard]] QStringList callsToUnits();

[[nodiscard]] inline Bytes bytesOf(const QByteArray& bytes)
{
    return {bytes.begin(), bytes.end()};
}
