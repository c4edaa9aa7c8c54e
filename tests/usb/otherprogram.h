#pragma once

#include "tests/harness/childprocess.h"
#include "tests/harness/outcome.h"

/// Another program that uses a unit of this vendor through the HID library of its own choice.
class OtherProgram
{
public:
    /// Opens the unit through that flavour of the library ("libusb" or "hidraw") and keeps it.
    Outcome hold(const QString& flavour);
    /// Closes it; nothing happens when it is not held.
    Outcome letGo();

    /// Writes so many reports to each unit, one a tick of a 1 ms timer, through that flavour. Returns the
    /// reports a second that each got; 0: it failed.
    [[nodiscard]] static double pacedRate(const QString& flavour, int reports);

private:
    ChildProcess process;
};
