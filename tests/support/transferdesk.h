#pragma once

#include "tests/support/scriptedunit.h"
#include "tests/support/testimage.h"
#include "tests/support/testwindow.h"

/// A window whose unit, or pair of decks, is open as after pressing Connect, driven tick by tick.
class TransferDesk
{
public:
    /// `second`, if any, is the deck behind the window's `secondDevice`.
    explicit TransferDesk(UnitType type, std::optional<UnitType> second = {});

    /// Loads the image, as Update Device would read it from its file.
    void load(const QByteArray& image) { window.state().firmwareData = image; }

    /// Runs this many ticks of the transfer's timer in sequence.
    void tick(int count = 1);

    /// Loads the image and runs the first tick, which writes the request.
    void writeRequest(const QByteArray& image = imageOf(200));

    /// Has the unit, or each deck, say a report with this status byte; `silent`: it says nothing.
    void sayStatus(int status, int ofSecond = silent);
    static constexpr int silent = -1;

    /// Lets the unit accept the image and advances the window until the first packet has been written.
    void startStream(const QByteArray& image);

    /// Begins where a test is about something later, which no user can reach directly: after so many packets
    /// of a stream; in the installation; with a unit that has not been opened.
    /// @{
    void skipTo(int packets) { window.state().packetNumber = packets; }
    void followInstallation() { window.state().applyingPhase = 1; }
    void loseHandle() { window.state().device = nullptr; }
    /// @}

    /// The writes to the unit, or to the second deck, so far: 65 bytes each.
    [[nodiscard]] std::vector<Bytes> writes() const { return virtualbus::writesTo(1); }
    /// Those behind the request, which was written.
    [[nodiscard]] std::vector<Bytes> packets() const;
    [[nodiscard]] std::vector<Bytes> secondWrites() const { return virtualbus::writesTo(2); }

    /// The hidapi calls since the handles were opened, as lines without the bytes.
    [[nodiscard]] QStringList calls() const;

    /// "transferStarted applyingPhase requestSent packetNumber"
    [[nodiscard]] QString phase() const;

    TestWindow window;
    std::shared_ptr<ScriptedUnit> unit;
    std::shared_ptr<ScriptedUnit> second;

private:
    std::size_t callsBefore = 0;
};

/// The packets that carry an image: full ones, then the final one. 65 bytes each.
[[nodiscard]] std::vector<Bytes> packetsOf(const models::Model& model, const QByteArray& image);

[[nodiscard]] QByteArray hexOf(const Bytes& bytes);
