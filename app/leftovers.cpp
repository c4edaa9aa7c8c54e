#include "app/leftovers.h"

#include "net/updatechecker.h"
#include "unit/hidio.h"

#include <QThread>
#include <QThreadPool>

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <thread>

namespace leftovers {

namespace {

constexpr std::chrono::milliseconds
    longestEnd(2500); ///< longer than two blocked writes of the libusb flavour
constexpr unsigned long workerEndMs = 300;

} // namespace

void limitTheEnd(int exitCode)
{
    static std::atomic_flag hasBegun;
    if (hasBegun.test_and_set())
        return;
    hidio::refuseWrites();
    std::thread([exitCode] {
        std::this_thread::sleep_for(longestEnd);
        hidio::closeAll(std::chrono::milliseconds(0));
        std::_Exit(exitCode);
    }).detach();
}

void endThreads(const MainWindow::Leftovers& leftovers)
{
    leftovers.worker->requestInterruption();
    leftovers.worker->quit();
    while (!leftovers.worker->wait(workerEndMs) && hidio::isBusy()) {
    }
    leftovers.checker->endNetwork();
}

void giveBack()
{
    hidio::closeAll(longestEnd);
}

void giveBackAtExit()
{
    (void)QThreadPool::globalInstance(); // created first, so that it waits for its threads last
    std::atexit([] {
        limitTheEnd(EXIT_FAILURE); // unless the end has already begun, with its own code
        giveBack();
    });
}

} // namespace leftovers
