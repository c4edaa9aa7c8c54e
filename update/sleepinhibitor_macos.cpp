#include "update/sleepinhibitor.h"

#include <QtGlobal>

#include <IOKit/pwr_mgt/IOPMLib.h>

// Written after Apple's IOPMLib.h; not yet built or run on a Mac.
namespace sleepinhibitor {

namespace {

IOPMAssertionID assertion = kIOPMNullAssertionID;

} // namespace

void prepare() {}

void hold()
{
    if (assertion != kIOPMNullAssertionID)
        return;
    const IOReturn result =
        IOPMAssertionCreateWithName(kIOPMAssertionTypePreventUserIdleSystemSleep, kIOPMAssertionLevelOn,
                                    CFSTR("A unit's firmware is being updated."), &assertion);
    if (result != kIOReturnSuccess)
        qWarning("The computer may go to sleep: IOPMAssertionCreateWithName %d", result);
}

void release()
{
    if (assertion != kIOPMNullAssertionID)
        IOPMAssertionRelease(assertion);
    assertion = kIOPMNullAssertionID;
}

} // namespace sleepinhibitor
