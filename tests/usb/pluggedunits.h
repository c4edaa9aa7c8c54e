#pragma once

#include "tests/harness/childprocess.h"
#include "tests/harness/outcome.h"
#include "tests/harness/program.h"

/// Virtual units on this machine's own USB bus: devices of its kernel like any others. They leave the bus
/// with this object. Needs root and a free (simulated) USB device port for each.
class PluggedUnits
{
public:
    ~PluggedUnits();

    /// An emulated computer may be busy elsewhere for a while, and the HID library keeps 32 reports only (the
    /// other flavour 63, and then the oldest): with the usual 8 ms between reports, one that is told once
    /// would get lost.
    static constexpr const char* unhurried = ",period-ms=200";

    /// Plugs in units, each described as for talvex-gadget and then by `more`, and waits until the system's
    /// HID driver has them.
    Outcome plugIn(const QStringList& units, const QString& more = unhurried);

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
