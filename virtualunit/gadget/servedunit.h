#pragma once

#include "virtualunit/gadget/usbdevice.h"
#include "virtualunit/virtualunit.h"

#include <poll.h>

/// A virtual unit on a real bus. Times are in ms of any steady clock, never going back.
class ServedUnit
{
public:
    using Milliseconds = virtualunit::Milliseconds;

    /// Plugs it in; throws like UsbDevice.
    ServedUnit(const virtualunit::Options& options, const std::string& name, const std::string& port);

    /// What to poll for before the next serve().
    [[nodiscard]] pollfd awaited() const;
    /// When serve() has something to do in any case, or `never`.
    [[nodiscard]] Milliseconds nextEventAt() const;

    /// Takes and offers all that can be taken and offered now. `ready`: what the poll found.
    void serve(short ready, Milliseconds now);

    [[nodiscard]] const std::string& node() const { return usb.node(); }

private:
    void takeOutput(Milliseconds now);
    void offerInput(Milliseconds now);
    void hostHasCome(Milliseconds now);
    void hostHasGone(Milliseconds now);

    virtualunit::VirtualUnit unit;
    const bool takesNothing;
    const std::optional<virtualunit::Report> greeting; ///< what it says before anybody listens, if anything
    int greetingsLeft = 2; ///< a device controller may take the first for itself, before the host fetches one
    std::optional<virtualunit::Report> next; ///< the input report to be offered
    bool isOffered = false;                  ///< a report is on offer and was not fetched yet
    bool hostListens = false;
    Milliseconds offeredAt = 0; ///< when a report was offered, or could not be
    UsbDevice usb;              ///< last: it goes off the bus before the unit goes
};
