#include "app/leftovers.h"

#include "net/updatechecker.h"

#include <QThread>

#include <chrono>
#include <cstdlib>
#include <mutex>
#include <thread>

namespace leftovers {

namespace {

constexpr auto longestEnd = std::chrono::seconds(2);
constexpr unsigned long workerEndMs = 300;

} // namespace

void limitTheEnd(const MainWindow::Leftovers& leftovers, int exitCode)
{
    std::thread([leftovers, exitCode] {
        std::this_thread::sleep_for(longestEnd);
        giveBack(leftovers);
        std::_Exit(exitCode);
    }).detach();
}

void endThreads(const MainWindow::Leftovers& leftovers)
{
    leftovers.worker->requestInterruption();
    leftovers.worker->quit();
    leftovers.worker->wait(workerEndMs);
    leftovers.checker->endNetwork();
}

void giveBack(const MainWindow::Leftovers& leftovers)
{
    static std::once_flag once;
    std::call_once(once, [&leftovers] {
        if (!leftovers.worker->wait(workerEndMs))
            return;
        for (hid_device* handle : leftovers.handles)
            if (handle != nullptr)
                hid_close(handle);
    });
}

} // namespace leftovers
