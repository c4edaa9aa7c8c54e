#include "app/programend.h"

#include "net/updatechecker.h"
#include "unit/hidio.h"
#include "update/sleepinhibitor.h"

#include <QCoreApplication>
#include <QThread>

#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <future>
#include <memory>
#include <thread>

namespace programend {

namespace {

constexpr std::chrono::milliseconds
    longestEnd(2500); ///< longer than two blocked writes of the libusb flavour
constexpr std::chrono::milliseconds longestClose(400); ///< a unit is usually given back within 10
constexpr unsigned long workerEndMs = 300;

/// Closing may block indefinitely: it waits for the unit, and for a thread that is already closing it.
void closeWithinLimit()
{
    const auto closed = std::make_shared<std::promise<void>>();
    std::thread([closed] {
        hidio::closeAll(std::chrono::milliseconds(0));
        closed->set_value();
    }).detach();
    closed->get_future().wait_for(longestClose);
}

} // namespace

void limitTheEnd(int exitCode)
{
    static std::atomic_flag hasBegun;
    if (hasBegun.test_and_set())
        return;
    hidio::refuseWrites();
    std::thread([exitCode] {
        std::this_thread::sleep_for(longestEnd);
        closeWithinLimit();
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
    sleepinhibitor::prepare();
    std::atexit([] {
        limitTheEnd(EXIT_FAILURE); // unless the end has already begun, with its own code
        giveBack();
        if (QCoreApplication::instance() == nullptr)
            return;
        // exit() was called during work: the next handlers would destroy what Qt's threads are still using.
        std::fflush(nullptr);
        std::_Exit(EXIT_FAILURE);
    });
}

} // namespace programend
