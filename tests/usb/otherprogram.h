#pragma once

#include "tests/harness/childprocess.h"
#include "tests/harness/outcome.h"

/// Another program that uses one of this vendor's units through a HID library of its choice.
class OtherProgram
{
public:
    /// Opens the unit through this flavour of the library ("libusb" or "hidraw") and keeps it open.
    Outcome hold(const QString& flavour);
    /// Closes the unit; does nothing if it is not held.
    Outcome letGo();

    /// Writes this many reports to each unit through this flavour, one per tick of a 1 ms timer. Returns the
    /// rate per unit in reports per second; 0 on failure.
    [[nodiscard]] static double pacedRate(const QString& flavour, int reports);

private:
    ChildProcess process;
};
