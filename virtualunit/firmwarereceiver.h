#pragma once

#include "virtualunit/journal.h"
#include "virtualunit/options.h"
#include "virtualunit/status.h"
#include "virtualunit/wire.h"

#include <algorithm>
#include <limits>

namespace virtualunit {

inline constexpr Milliseconds never = std::numeric_limits<Milliseconds>::max();

/// How far the unit got with the last image it was offered.
enum class Verdict { None, Refused, Receiving, Installing, Installed, WrongDigest, Rejected };

/// The unit's side of a firmware transfer: takes the request and the packets, checks every byte, keeps the
/// image and installs it. A violation of the wire format is an error line in the journal; the host is told:
///   of a malformed request:      "packets skipped", and nothing is accepted
///   of a wrong packet number:    "packets skipped" at once; the transfer continues after the gap
///   of any of these at the end:  "rejected" after the final packet, even if the digest is right
class FirmwareReceiver
{
public:
    /// The references must outlive this object.
    FirmwareReceiver(const Options& options, Journal& journal, Status& status);

    /// A report whose command is a request, a data packet or a final packet.
    void receive(Command command, const Report& report, Milliseconds now);

    /// A report with an unknown command: it spoils a transfer in progress.
    void spoil() { spoilt = true; }

    /// When advance() has something to do, or `never`.
    [[nodiscard]] Milliseconds nextEventAt() const { return std::min(answerAt, installedAt); }

    /// Does what is due at `now`.
    void advance(Milliseconds now);

    /// The bytes received since the last request, even while more are arriving.
    [[nodiscard]] const std::vector<std::uint8_t>& image() const { return received; }

    [[nodiscard]] Verdict verdict() const { return outcome; }

    /// Whether the unit has reported an installation and now stays silent.
    [[nodiscard]] bool hasGoneSilent() const;

private:
    void takeRequest(const Report& report, Milliseconds now);
    void answerRequest();
    void takeData(const Report& report);
    void takeFinal(const Report& report, Milliseconds now);
    void checkNumber(std::uint32_t number, std::uint32_t expected, std::uint32_t reached);
    bool isLost(std::uint32_t number);
    void completeImage(Milliseconds now);
    void writeImage();
    void conclude(Verdict verdict, const char* line, std::uint8_t nibble);
    void fail(const std::string& what);
    void complainOnce(const std::string& what);

    const Options& options;
    const ReportLayout layout;
    Journal& journal;
    Status& status;

    Verdict outcome = Verdict::None;
    std::string announcedDigest;
    std::vector<std::uint8_t> received;
    std::uint32_t nextNumber = 1; ///< of the packet that must come next, 28 bits
    bool spoilt = false;          ///< the transfer in progress violated the wire format
    bool complained = false;      ///< about unexpected packets
    Milliseconds answerAt = never;
    Milliseconds installedAt = never;
};

} // namespace virtualunit
