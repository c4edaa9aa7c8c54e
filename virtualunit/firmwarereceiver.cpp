#include "virtualunit/firmwarereceiver.h"

#include "virtualunit/md5.h"
#include "virtualunit/numbertext.h"

#include <QSaveFile>

#include <algorithm>

namespace virtualunit {
namespace {

constexpr std::uint32_t numberMask = 0x0FFFFFFF; ///< a packet number has 28 bits
constexpr std::uint32_t finalMask = 0xFFFF;      ///< the final packet keeps 16 of them

std::string padComplaint(const char* what, const Report& report, std::size_t index)
{
    return std::string(what) + " byte=" + std::to_string(index) + " value=0x" + hexText(report[index], 2);
}

} // namespace

FirmwareReceiver::FirmwareReceiver(const Options& unitOptions, Journal& unitJournal, Status& unitStatus)
    : options(unitOptions),
      layout(findUnitModel(unitOptions.type)->layout),
      journal(unitJournal),
      status(unitStatus)
{
}

void FirmwareReceiver::receive(Command command, const Report& report, Milliseconds now)
{
    if (command == Command::FirmwareRequest)
        return takeRequest(report, now);
    if (outcome != Verdict::Receiving)
        return complainOnce("packet-unexpected");
    status.hold(status::idle);
    if (command == Command::DataPacket)
        takeData(report);
    else
        takeFinal(report, now);
}

void FirmwareReceiver::advance(Milliseconds now)
{
    if (answerAt <= now) {
        answerAt = never;
        answerRequest();
    }
    if (installedAt <= now) {
        installedAt = never;
        if (options.faults.has(Fault::InstallationFails))
            conclude(Verdict::Rejected, "verdict rejected", status::rejected);
        else
            conclude(Verdict::Installed, "verdict installed", status::installed);
    }
}

bool FirmwareReceiver::hasGoneSilent() const
{
    return outcome == Verdict::Installing && options.faults.has(Fault::SilentInstallation) &&
           !status.hasNews();
}

void FirmwareReceiver::takeRequest(const Report& report, Milliseconds now)
{
    if (outcome == Verdict::Receiving || outcome == Verdict::Installing || answerAt != never)
        fail("request-during-transfer");
    outcome = Verdict::None;
    received.clear();
    nextNumber = 1;
    spoilt = complained = false;
    answerAt = installedAt = never;
    announcedDigest = digestText(report);

    if (!isDigestText(announcedDigest))
        fail("request-digest");
    if (const auto pad = requestPadError(report, layout))
        fail(padComplaint("request-pad", report, *pad));
    if (spoilt)
        return conclude(Verdict::Refused, "refused malformed", status::packetsSkipped);
    journal.add("request digest=" + announcedDigest);
    if (options.faults.has(Fault::NeverAnswers))
        return journal.add("unanswered");
    answerAt = now + options.acceptMs;
}

void FirmwareReceiver::answerRequest()
{
    if (options.faults.has(Fault::RefusesTimeout))
        return conclude(Verdict::Refused, "refused timeout", status::timedOut);
    if (options.faults.has(Fault::RefusesSkipped))
        return conclude(Verdict::Refused, "refused skipped", status::packetsSkipped);
    outcome = Verdict::Receiving;
    journal.add("accepted");
    status.hold(status::accepted);
}

void FirmwareReceiver::takeData(const Report& report)
{
    const std::uint32_t number = dataPacketNumber(report, layout);
    if (isLost(number))
        return;
    checkNumber(number, nextNumber, number);
    const auto block = blockOf(report, layout);
    received.insert(received.end(), block.begin(), block.end());
}

void FirmwareReceiver::takeFinal(const Report& report, Milliseconds now)
{
    const std::uint32_t number = finalPacketNumber(report, layout);
    if (isLost(number))
        return;
    checkNumber(number, nextNumber & finalMask, nextNumber);
    const std::size_t count = finalPacketCount(report, layout);
    if (count >= blockSize)
        fail("final-count got=" + std::to_string(count));
    if (const auto pad = finalPadError(report, layout))
        fail(padComplaint("final-pad", report, *pad));
    const auto block = blockOf(report, layout).first(std::min(count, blockSize));
    received.insert(received.end(), block.begin(), block.end());
    completeImage(now);
}

/// `expected` is as wide as the number in the packet; the count goes on behind `reached`, so that one gap is
/// one complaint.
void FirmwareReceiver::checkNumber(std::uint32_t number, std::uint32_t expected, std::uint32_t reached)
{
    if (number != expected) {
        fail("packet-number expected=" + std::to_string(expected) + " got=" + std::to_string(number));
        status.tell(status::packetsSkipped);
    }
    nextNumber = (reached + 1) & numberMask;
}

bool FirmwareReceiver::isLost(std::uint32_t number)
{
    if (!options.faults.hasAt(Fault::LosesPacket, number))
        return false;
    journal.add("lost packet=" + std::to_string(number));
    return true;
}

void FirmwareReceiver::completeImage(Milliseconds now)
{
    writeImage();
    journal.add("image-complete size=" + std::to_string(received.size()));
    const bool damaged = md5Text(received) != announcedDigest;
    if (damaged || options.faults.has(Fault::WrongDigest))
        return conclude(Verdict::WrongDigest, "verdict wrong-digest", status::wrongDigest);
    if (spoilt || options.faults.has(Fault::RejectsImage))
        return conclude(Verdict::Rejected, "verdict rejected", status::rejected);

    outcome = Verdict::Installing;
    journal.add("installing");
    status.tell(status::installing); // seen even if the installation ends before the next report
    status.hold(status::installing);
    if (!options.faults.has(Fault::SilentInstallation))
        installedAt = now + options.installMs;
}

void FirmwareReceiver::conclude(Verdict verdict, const char* line, std::uint8_t nibble)
{
    outcome = verdict;
    journal.add(line);
    status.hold(status::idle);
    status.tell(nibble);
}

void FirmwareReceiver::fail(const std::string& what)
{
    journal.addError(what);
    spoilt = true;
}

void FirmwareReceiver::complainOnce(const std::string& what)
{
    if (!complained)
        journal.addError(what);
    complained = true;
}

void FirmwareReceiver::writeImage()
{
    if (options.imagePath.empty())
        return;
    QSaveFile file(QString::fromStdString(options.imagePath)); // a reader sees the whole image or none
    const auto size = static_cast<qint64>(received.size());
    const bool written = file.open(QIODevice::WriteOnly) &&
                         file.write(reinterpret_cast<const char*>(received.data()), size) == size &&
                         file.commit();
    if (!written)
        journal.add("image-not-written");
}

} // namespace virtualunit
