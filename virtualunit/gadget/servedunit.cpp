#include "virtualunit/gadget/servedunit.h"

#include "virtualunit/hidapi/unitdevice.h"

#include <algorithm>

using virtualunit::never;

namespace {

using Milliseconds = ServedUnit::Milliseconds;

/// A host that listens fetches a report within some 10 ms; the bus has no other sign of opening and closing.
constexpr Milliseconds hostGoneMs = 1000;
/// Until the host has configured the device there is nothing to wait for.
constexpr Milliseconds retryMs = 20;
/// Output reports taken in one go, before input is seen to.
constexpr int mostTaken = 16;

/// What the unit has to say to the first who listens; nothing: it waits to be asked.
std::optional<virtualunit::Report> greetingOf(virtualunit::Options options)
{
    options.imagePath.clear();
    options.journalPath.clear();
    virtualunit::VirtualUnit unit(options);
    return unit.open(0) ? unit.takeInput(0) : std::nullopt;
}

} // namespace

ServedUnit::ServedUnit(const virtualunit::Options& options, const std::string& name, const std::string& port)
    : unit(options),
      takesNothing(options.faults.has(virtualunit::Fault::TakesNothing)),
      greeting(greetingOf(options)),
      next(greeting),
      usb(name, virtualbus::recordOf(options), port)
{
}

pollfd ServedUnit::awaited() const
{
    const int output = takesNothing ? 0 : POLLIN;
    const int input = isOffered ? POLLOUT : 0;
    return {usb.descriptor(), static_cast<short>(output | input), 0};
}

Milliseconds ServedUnit::nextEventAt() const
{
    if (usb.descriptor() < 0)
        return never;
    if (isOffered)
        return hostListens ? offeredAt + hostGoneMs : never;
    if (next)
        return offeredAt + retryMs;
    return hostListens ? unit.nextEventAt() : never;
}

void ServedUnit::serve(short ready, Milliseconds now)
{
    if (usb.descriptor() < 0)
        return;
    if ((ready & POLLIN) != 0)
        takeOutput(now);
    if (isOffered && (ready & POLLOUT) != 0) {
        isOffered = false;
        if (greetingsLeft > 0 && --greetingsLeft > 0)
            next = greeting;
        else
            hostHasCome(now);
    }
    if (isOffered && offeredAt + hostGoneMs <= now)
        hostHasGone(now);
    if (!isOffered)
        offerInput(now);
    if (!unit.isPluggedIn())
        usb.unplug();
}

void ServedUnit::takeOutput(Milliseconds now)
{
    for (int taken = 0; taken < mostTaken && unit.isPluggedIn(); ++taken) {
        const std::vector<std::uint8_t> report = usb.readReport();
        if (report.empty())
            return;
        hostHasCome(now);
        unit.receive(report, now);
    }
}

void ServedUnit::offerInput(Milliseconds now)
{
    if (!next && hostListens)
        next = unit.takeInput(now);
    if (!next)
        return;
    offeredAt = now;
    isOffered = usb.offerReport(*next);
    if (isOffered)
        next.reset();
    else
        hostHasGone(now);
}

void ServedUnit::hostHasCome(Milliseconds now)
{
    if (!hostListens)
        hostListens = unit.open(now);
}

void ServedUnit::hostHasGone(Milliseconds now)
{
    if (hostListens)
        unit.close(now);
    hostListens = false;
}
