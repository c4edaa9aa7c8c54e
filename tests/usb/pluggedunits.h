#pragma once

#include "tests/harness/childprocess.h"
#include "tests/harness/outcome.h"
#include "tests/harness/program.h"

/// Virtual units on this machine's own USB bus, which its kernel treats like any other device. The
/// destructor unplugs them. Needs root and a free (simulated) USB device port for each.
class PluggedUnits
{
public:
    ~PluggedUnits();

    /// An emulated computer may stall for a while, and the HID library keeps only 32 reports (the other
    /// flavour keeps the oldest 63): with the usual 8 ms between reports, a report sent only once could get
    /// lost.
    static constexpr const char* unhurried = ",period-ms=200";

    /// Plugs in units, each described as for talvex-gadget with `more` appended, and waits until the
    /// system's HID driver has bound them.
    Outcome plugIn(const QStringList& units, const QString& more = unhurried);

    /// Writes as many reports as the kernel queues for a unit that accepts none; the next write will block.
    Outcome fillUp();

    /// Unplugs all units and waits until the system has noticed.
    Outcome unplug();

    /// Stops the units from accepting or sending anything until they are unplugged.
    void freeze();

    /// Waits until the system's HID driver has all units (again) and another program can open each of them.
    Outcome seeGivenBack() const;

    /// The device nodes (/dev/hidraw0) that the system's HID driver provides for this vendor's units.
    [[nodiscard]] static QStringList nodes();

private:
    ChildProcess gadget;
    int count = 0;
    bool frozen = false;
};

/// Makes the program use the HID library it was linked to.
void useRealBus(Program& program);

/// Presses Connect until the unit is found: with libusb, a program that is running hears of a new unit from
/// the device manager, and with Wine, Windows' drivers for it come at their leisure; on a busy machine either
/// may be after the kernel's own device file is there.
Outcome connectOnceHeardOf(Program& program, const QString& message);

/// The program's processor load while left alone for 1 s, in per cent of one processor.
[[nodiscard]] int processorLoad(Program& program);

/// The flavour of the HID library under test: "libusb" or "hidraw", from TALVEX_TEST_FLAVOUR in the
/// environment.
[[nodiscard]] QString flavour();

/// Whether row `row` (from 0) of a table that has little to do with the flavour is for this one: every second
/// row is, as each takes a guest 5 s or more; every row with TALVEX_USB_ALL.
[[nodiscard]] bool takesRow(int row);
