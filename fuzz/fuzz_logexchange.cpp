// Input: the unit type, which writes fail (fuzzedunit.h), then the unit's answers.

#include "fuzz/fuzzedunit.h"
#include "fuzz/quietprogram.h"
#include "log/logdownloader.h"
#include "tests/support/filecontent.h"
#include "tests/support/inside.h"
#include "tests/support/wire.h"

namespace {

constexpr int mostSteps = 5000; ///< more than an input has answers

/// What the unit's answers make of a log download, read off the wire and nothing else.
struct Expected
{
    QByteArray file;
    bool finished = false;
};

Expected expectedOf(const std::vector<fuzzedunit::Read>& reads)
{
    Expected expected;
    for (const fuzzedunit::Read& read : reads) {
        if (read.result <= 0 || expected.finished)
            continue; // what comes behind the end is dropped
        const auto code = static_cast<std::uint8_t>(read.report[0]);
        if (read.waits) {
            expected.finished = code == 0x60;
        } else if (code == 0x40) {
            expected.file += read.report.mid(1);
        } else if (code == 0x50) {
            const int length = static_cast<std::uint8_t>(read.report[1]);
            expected.file += read.report.mid(2, std::min(length, 62));
            expected.finished = true;
        }
    }
    return expected;
}

void checkWrites(UnitType type)
{
    const int command = models::of(type).command();
    const QByteArray request = wire::report({{command, 0x10}, {command + 1, 1}});
    const QByteArray acknowledge = wire::report({{1, 0x30}});
    const QByteArray resend = wire::report({{1, 0x70}});
    const QByteArrayList& writes = fuzzedunit::tried(0);
    for (const QByteArray& bytes : writes)
        expect(bytes == request || bytes == acknowledge || bytes == resend,
               "a request, an acknowledge or a resend");
    expect(!writes.isEmpty() && writes.front()[command] == 0x10, "the request goes first");
}

void connectToItself(LogDownloader& downloader)
{
    LogDownloader* const self = &downloader;
    QObject::connect(self, SIGNAL(needwaitLogFileMd5()), self, SLOT(waitLogFileMd5()));
    QObject::connect(self, SIGNAL(needreadLogPart()), self, SLOT(readLogPart()));
    QObject::connect(self, SIGNAL(needdataCompleted(int)), self, SLOT(dataCompleted(int)));
    QObject::connect(self, SIGNAL(needresendMessage(int)), self, SLOT(resendMessage(int)));
}

} // namespace

int LLVMFuzzerInitialize(int* /*argc*/, char*** /*argv*/)
{
    quietprogram::start();
    return 0;
}

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    Input input(data, size);
    const UnitType type = models::of(input.byte() % models::count).type;
    fuzzedunit::begin(input, input.byte());
    LogDownloader downloader(nullptr, nullptr);
    downloader.setDevice(fuzzedunit::handle(0), type);
    connectToItself(downloader);
    int finished = 0;
    QObject::connect(&downloader, &LogDownloader::logDownloadFinished, [&finished] { ++finished; });

    downloader.startDownload(1);
    const int steps = quietprogram::fireTimers(mostSteps);
    expect(steps < mostSteps, "the exchange comes to an end");

    const Expected expected = expectedOf(fuzzedunit::reads());
    checkWrites(type);
    expect((finished > 0) == expected.finished, "the end is told, and only the end");
    QFile& file = inside::of(downloader).logFile;
    file.close();
    expect(file.exists() && contentOf(file.fileName()) == expected.file,
           "every received byte is in the file, and none else");
    file.remove();
    return 0;
}
