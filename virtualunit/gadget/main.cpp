#include "virtualunit/gadget/servedunit.h"
#include "virtualunit/options.h"

#include <sys/signalfd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <memory>
#include <stdexcept>

namespace {

using Units = std::vector<std::unique_ptr<ServedUnit>>;
using virtualunit::Milliseconds;

Milliseconds nowMs()
{
    const auto sinceStart = std::chrono::steady_clock::now().time_since_epoch();
    return std::chrono::duration_cast<std::chrono::milliseconds>(sinceStart).count();
}

/// Readable once somebody asks the program to end; before that the signals do nothing.
FileDescriptor catchEndSignals()
{
    sigset_t set;
    sigemptyset(&set);
    for (const int signal : {SIGINT, SIGTERM, SIGHUP})
        sigaddset(&set, signal);
    sigprocmask(SIG_BLOCK, &set, nullptr);
    return FileDescriptor(signalfd(-1, &set, SFD_CLOEXEC));
}

/// Whether the host lets somebody open a unit is nothing that the unit could decide.
void refuseHostFaults(const virtualunit::Options& options)
{
    for (const auto fault : {virtualunit::Fault::CannotOpen, virtualunit::Fault::NoPermission})
        if (options.faults.has(fault))
            throw std::runtime_error("on a real bus it is the host that refuses to open a unit");
}

Units plugIn(const std::vector<virtualunit::Options>& all)
{
    std::for_each(all.begin(), all.end(), refuseHostFaults);
    const std::vector<std::string> ports = freePorts();
    if (ports.size() < all.size())
        throw std::runtime_error(
            std::to_string(all.size()) +
            " units need as many USB device ports; free here: " + std::to_string(ports.size()));
    Units units;
    for (std::size_t i = 0; i < all.size(); ++i) {
        const std::string name = "talvex-" + std::to_string(getpid()) + "-" + std::to_string(i + 1);
        units.push_back(std::make_unique<ServedUnit>(all[i], name, ports[i]));
        std::printf("%s %s\n", ports[i].c_str(), units.back()->node().c_str());
    }
    std::fflush(stdout);
    return units;
}

/// In ms, as poll() takes it: -1 is for ever.
int timeUntilNextEvent(const Units& units, Milliseconds now)
{
    Milliseconds at = virtualunit::never;
    for (const auto& unit : units)
        at = std::min(at, unit->nextEventAt());
    constexpr Milliseconds longest = 60000; // fits an int; to wake for nothing does no harm
    return at == virtualunit::never ? -1 : static_cast<int>(std::clamp(at - now, Milliseconds(0), longest));
}

void serveUntilSignal(const Units& units, const FileDescriptor& endSignal)
{
    std::vector<pollfd> awaited(units.size() + 1);
    pollfd& ending = awaited.back();
    while (ending.revents == 0) {
        ending = {endSignal.get(), POLLIN, 0};
        for (std::size_t i = 0; i < units.size(); ++i)
            awaited[i] = units[i]->awaited();
        if (poll(awaited.data(), awaited.size(), timeUntilNextEvent(units, nowMs())) < 0 && errno != EINTR)
            throw std::runtime_error("cannot wait for the host");
        const Milliseconds now = nowMs();
        for (std::size_t i = 0; i < units.size(); ++i)
            units[i]->serve(awaited[i].revents, now);
    }
}

} // namespace

int main(int argc, char** argv)
{
    if (argc != 2) {
        std::fputs(
            "usage: talvex-gadget 'MODEL[,key=value]...[;MODEL...]'\n"
            "Is these units on the USB device ports of this system until it is ended (Ctrl+C, SIGTERM).\n",
            stderr);
        return 2;
    }
    const virtualunit::ParsedOptions parsed = virtualunit::parseOptions(argv[1]);
    if (!parsed.error.empty() || parsed.units.empty()) {
        std::fprintf(stderr, "talvex-gadget: %s\n",
                     parsed.units.empty() && parsed.error.empty() ? "no units" : parsed.error.c_str());
        return 2;
    }
    const FileDescriptor endSignal = catchEndSignals();
    try {
        serveUntilSignal(plugIn(parsed.units), endSignal);
    } catch (const std::runtime_error& error) {
        std::fprintf(stderr, "talvex-gadget: %s\n", error.what());
        return 1;
    }
    return 0;
}
