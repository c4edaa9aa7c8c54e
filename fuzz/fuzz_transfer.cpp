// Input: the unit type, whether it is a pair (odd), which writes fail (fuzzedunit.h), the image's size (16
// bits), then the unit's answers.

#include "fuzz/fuzzedunit.h"
#include "fuzz/quietprogram.h"
#include "log/logdownloader.h"
#include "tests/support/inside.h"
#include "tests/support/testimage.h"
#include "tests/support/texts.h"
#include "tests/support/wire.h"
#include "ui/mainwindow.h"
#include "update/transferstate.h"

#include <QCoreApplication>
#include <QProgressBar>
#include <QThread>

namespace {

constexpr int largestImage = 4096;

MainWindow* window = nullptr; ///< one for all inputs; it lives to the process's end

/// As after a press of Connect and before any transfer.
void prepare(const models::Model& model, bool pair, const QByteArray& image)
{
    const inside::Window state = inside::of(*window);
    state.unitType = model.type;
    state.headerOffset = model.layout.headerOffset;
    state.payloadOffset = model.layout.payloadOffset;
    state.device = fuzzedunit::handle(0);
    state.secondDevice = pair ? fuzzedunit::handle(1) : nullptr;
    state.deckCount = pair ? 2 : 1;
    state.firmwareData = image;
    state.transferStarted = state.applyingPhase = state.requestSent = state.packetNumber = 0;
    state.updateSize = 1;
    state.fakeProgressActive = 0;
    state.installationBoxes = 0;
    state.endTold = false;
    transferstate::fakeProgressValue = transferstate::fakeProgressTick = 0;
    for (const char* name : {"progressBarTransfer", "progressBarUpdate"})
        window->findChild<QProgressBar*>(name)->setValue(0);
}

bool wasRead(std::uint8_t nibble)
{
    const auto& reads = fuzzedunit::reads();
    const int at = inside::of(*window).headerOffset;
    return std::any_of(reads.begin(), reads.end(), [=](const fuzzedunit::Read& read) {
        return read.result > 0 && (static_cast<std::uint8_t>(read.report[at]) & 0xF0) == nibble;
    });
}

/// What was written to one unit: the request, once or again after a failure; then, once a unit has accepted,
/// every packet in its order, each at most twice, and nothing behind the final one.
void checkStream(const models::Model& model, int unit, bool pair, const QByteArray& image)
{
    const auto packetOf = [&](int number) { return wire::packet(model, image, number); };
    const QByteArrayList& tried = fuzzedunit::tried(unit);
    int packets = 0;
    const int last = image.size() / 60 + 1;
    bool repeated = false;
    for (int i = 1; i < tried.size(); ++i) {
        const bool again = packets > 0 && !repeated && !pair && tried[i] == packetOf(packets);
        repeated = again;
        if (!again)
            ++packets;
        expect(packets <= last, "nothing follows the final packet");
        expect(tried[i] == packetOf(packets), "the packets carry the image in its order");
    }
    expect(tried.isEmpty() || tried.front() == wire::request(model, wire::digestOf(image)),
           "the request goes first, with the image's digest");
    expect(packets == 0 || wasRead(0x90), "no packet goes to a unit that has not accepted");
}

void checkBoxes(const QStringList& boxes)
{
    expect(!boxes.contains(text::finished) || wasRead(0xF0), "the end is told where a unit has told it");
    expect(!boxes.contains(text::wrongDigest) || wasRead(0xC0), "so is a wrong digest");
    expect(!boxes.contains(text::rejected) || wasRead(0x70), "so is a failed installation");
    expect(!boxes.contains(text::timedOut) || wasRead(0xA0), "so is a time-out");
    expect(!boxes.contains(text::skipped) || wasRead(0xB0), "so are skipped packets");
    expect(!boxes.contains(text::behindTheEnd), "no packet begins behind the image's end");
}

} // namespace

int LLVMFuzzerInitialize(int* /*argc*/, char*** /*argv*/)
{
    quietprogram::start();
    window = new MainWindow;
    QThread* const worker = window->leftovers().worker;
    worker->quit(); // no log is asked for here
    worker->wait();
    inside::of(inside::of(*window).logDownloader).logFile.remove();
    return 0;
}

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    Input input(data, size);
    const models::Model& model = models::of(input.byte() % models::count);
    const bool pair = input.byte() % 2 != 0;
    const std::uint8_t failing = input.byte();
    const QByteArray image = imageOf(input.number16() % largestImage + 1);
    const auto ticks = static_cast<int>(input.left()) + image.size() / 60 + 4;
    fuzzedunit::begin(input, failing);
    prepare(model, pair, image);
    for (int tick = 0; tick < ticks; ++tick) {
        window->transmitSlot();
        QCoreApplication::sendPostedEvents(window); // the installation's boxes
    }
    checkStream(model, 0, pair, image);
    if (pair)
        checkStream(model, 1, pair, image);
    checkBoxes(quietprogram::takeBoxes());
    return 0;
}
