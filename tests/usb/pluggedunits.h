#pragma once

#include "childprocess.h"
#include "outcome.h"
#include "program.h"

/// Virtual units on this machine's own USB bus: devices of its kernel like any others. They leave the bus
/// with this object. Needs root and a free (simulated) USB device port for each.
class PluggedUnits
{
public:
    ~PluggedUnits();

    /// Plugs in units, each described as for talvex-gadget, and waits until the system's HID driver has them.
    Outcome plugIn(const QStringList& units);

    /// Writes as many reports as the kernel keeps for a unit that takes nothing; the next one will wait.
    Outcome fillUp();

    /// Pulls the plug of all and waits until the system has noticed.
    Outcome unplug();

    /// From now on they take nothing and say nothing, until they are unplugged.
    void freeze();

    /// Waits until the system's HID driver has all of them (again) and each can be opened by another program.
    Outcome seeGivenBack() const;

    /// The nodes (/dev/hidraw0) through which the system's HID driver offers units of this vendor.
    [[nodiscard]] static QStringList nodes();

private:
    ChildProcess gadget;
    int count = 0;
    bool frozen = false;
};

/// Has the program use the HID library it was linked to.
void useRealBus(Program& program);

/// Share of one processor, in per cent, that the program takes while nothing is done to it for 1 s.
[[nodiscard]] int processorLoad(Program& program);

/// The flavour of the HID library under test: "libusb" or "hidraw", from TALVEX_TEST_FLAVOUR in the
/// environment.
[[nodiscard]] QString flavour();
