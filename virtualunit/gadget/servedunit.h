#pragma once

#include "virtualunit/gadget/usbdevice.h"
#include "virtualunit/virtualunit.h"

#include <poll.h>

/// A virtual unit on a real bus. Times are in ms of any clock that never goes back.
class ServedUnit
{
public:
    using Milliseconds = virtualunit::Milliseconds;

    /// Plugs it in; throws like UsbDevice.
    ServedUnit(const virtualunit::Options& options, const std::string& name, const std::string& port);

    /// What to poll for before the next serve().
    [[nodiscard]] pollfd awaited() const;
    /// When serve() has something to do whatever the poll finds, or `never`.
    [[nodiscard]] Milliseconds nextEventAt() const;

    /// Reads and offers all reports that it can now. `ready`: what the poll found.
    void serve(short ready, Milliseconds now);

    [[nodiscard]] const std::string& node() const { return usb.node(); }

private:
    void takeOutput(Milliseconds now);
    void offerInput(Milliseconds now);
    void hostHasCome(Milliseconds now);
    void hostHasGone(Milliseconds now);

    virtualunit::VirtualUnit unit;
    const bool takesNothing;
    const std::optional<virtualunit::Report> greeting; ///< what it sends before anybody reads, if anything
    int greetingsLeft = 2; ///< a device controller may swallow the first one before the host fetches any
    std::optional<virtualunit::Report> next; ///< the input report to be offered
    bool isOffered = false;                  ///< a report is on offer and has not been fetched
    bool hostListens = false;
    Milliseconds offeredAt = 0; ///< when a report was offered, or could not be
    UsbDevice usb;              ///< last: it leaves the bus before the unit is destroyed
};
