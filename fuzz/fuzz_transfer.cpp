// Input: the unit type, whether it is a pair (odd), which writes fail (fuzzedunit.h), the image's size (16
// bits), then the unit's answers.

#include "fuzz/fuzzedunit.h"
#include "fuzz/quietprogram.h"
#include "log/logdownloader.h"
#include "ui/mainwindow.h"
#include "update/transferstate.h"

#include <QCoreApplication>
#include <QCryptographicHash>
#include <QProgressBar>
#include <QThread>

namespace {

constexpr int largestImage = 4096;

MainWindow* window = nullptr; ///< one for all inputs; it lives to the process's end

const QString finishedText =
    "Update installed correctly, please close program, and disconnect/power off your controller.\nWhen "
    "reconnected/power ON your device will have the latest software.";

QByteArray imageOf(int size)
{
    QByteArray image(size, '\0');
    for (int i = 0; i < size; ++i)
        image[i] = static_cast<char>(i % 251 + 1);
    return image;
}

/// As after a press of Connect and before any transfer.
void prepare(UnitType type, bool pair, const QByteArray& image)
{
    const ReportLayout layout = unitModels.at(static_cast<std::size_t>(type)).layout;
    window->unitType = type;
    window->headerOffset = layout.headerOffset;
    window->payloadOffset = layout.payloadOffset;
    window->device = fuzzedunit::handle(0);
    window->secondDevice = pair ? fuzzedunit::handle(1) : nullptr;
    window->deckCount = pair ? 2 : 1;
    window->firmwareData = image;
    window->transferStarted = window->applyingPhase = window->requestSent = window->packetNumber = 0;
    window->updateSize = 1;
    window->fakeProgressActive = 0;
    window->installationBoxes = 0;
    window->endTold = false;
    transferstate::fakeProgressValue = transferstate::fakeProgressTick = 0;
    for (const char* name : {"progressBarTransfer", "progressBarUpdate"})
        window->findChild<QProgressBar*>(name)->setValue(0);
}

bool wasRead(std::uint8_t nibble)
{
    const auto& reads = fuzzedunit::reads();
    const int at = window->headerOffset;
    return std::any_of(reads.begin(), reads.end(), [=](const fuzzedunit::Read& read) {
        return read.result > 0 && (static_cast<std::uint8_t>(read.report[at]) & 0xF0) == nibble;
    });
}

/// The packet of this number, as the wire wants it: a full one, or the final one with what is left.
QByteArray packetOf(const QByteArray& image, int number)
{
    const bool isPlayer = window->headerOffset == 60;
    const int header = isPlayer ? 61 : 1;
    const QByteArray piece = image.mid((number - 1) * 60, 60);
    QByteArray packet(65, '\0');
    if (piece.size() < 60) {
        packet[header] = '\xD0';
        packet[header + 1] = static_cast<char>(piece.size());
    }
    packet[header + 2] = static_cast<char>(number >> 8);
    packet[header + 3] = static_cast<char>(number & 0xFF);
    packet.replace(isPlayer ? 1 : 5, piece.size(), piece);
    return packet;
}

QByteArray requestOf(const QByteArray& image)
{
    QByteArray request(65, '\0');
    request[window->headerOffset + 1] = '\x80';
    request.replace(2, 32, QCryptographicHash::hash(image, QCryptographicHash::Md5).toHex());
    return request;
}

/// What was written to one unit: the request, once or again after a failure; then, once a unit has accepted,
/// every packet in its order, each at most twice, and nothing behind the final one.
void checkStream(int unit, bool pair, const QByteArray& image)
{
    const QByteArrayList& tried = fuzzedunit::tried(unit);
    int packets = 0;
    const int last = image.size() / 60 + 1;
    bool repeated = false;
    for (int i = 1; i < tried.size(); ++i) {
        const bool again = packets > 0 && !repeated && !pair && tried[i] == packetOf(image, packets);
        repeated = again;
        if (!again)
            ++packets;
        expect(packets <= last, "nothing follows the final packet");
        expect(tried[i] == packetOf(image, packets), "the packets carry the image in its order");
    }
    expect(tried.isEmpty() || tried.front() == requestOf(image),
           "the request goes first, with the image's digest");
    expect(packets == 0 || wasRead(0x90), "no packet goes to a unit that has not accepted");
}

void checkBoxes(const QStringList& boxes)
{
    const auto told = [&boxes](const char* beginning) {
        return std::any_of(boxes.begin(), boxes.end(),
                           [=](const QString& box) { return box.startsWith(beginning); });
    };
    expect(!boxes.contains(finishedText) || wasRead(0xF0), "the end is told where a unit has told it");
    expect(!told("Transfer failed. Wrong md5.") || wasRead(0xC0), "so is a wrong digest");
    expect(!told("Updating failed.") || wasRead(0x70), "so is a failed installation");
    expect(!told("Transfer timeout failed.") || wasRead(0xA0), "so is a time-out");
    expect(!told("Transfer failed. Packets skipped.") || wasRead(0xB0), "so are skipped packets");
    expect(!told("Cannot read from file updater"), "no packet begins behind the image's end");
}

} // namespace

int LLVMFuzzerInitialize(int* /*argc*/, char*** /*argv*/)
{
    quietprogram::start();
    window = new MainWindow;
    QThread* const worker = window->leftovers().worker;
    worker->quit(); // no log is asked for here
    worker->wait();
    window->logDownloader->logFile.remove();
    return 0;
}

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    Input input(data, size);
    const UnitType type = unitModels.at(input.byte() % unitModels.size()).type;
    const bool pair = input.byte() % 2 != 0;
    const std::uint8_t failing = input.byte();
    const QByteArray image = imageOf(input.number16() % largestImage + 1);
    const auto ticks = static_cast<int>(input.left()) + image.size() / 60 + 4;
    fuzzedunit::begin(input, failing);
    prepare(type, pair, image);
    for (int tick = 0; tick < ticks; ++tick) {
        window->transmitSlot();
        QCoreApplication::sendPostedEvents(window); // the installation's boxes
    }
    checkStream(0, pair, image);
    if (pair)
        checkStream(1, pair, image);
    checkBoxes(quietprogram::takeBoxes());
    return 0;
}
