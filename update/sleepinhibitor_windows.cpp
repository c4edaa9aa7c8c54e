#include "update/sleepinhibitor.h"

#include <QtGlobal>

#include <windows.h>

// Written after Microsoft's documentation of SetThreadExecutionState; tried under Wine, not yet on Windows.
namespace sleepinhibitor {

void prepare() {}

void hold()
{
    if (SetThreadExecutionState(ES_CONTINUOUS | ES_SYSTEM_REQUIRED) == 0)
        qWarning("The computer may go to sleep: SetThreadExecutionState %lu", GetLastError());
}

void release()
{
    SetThreadExecutionState(ES_CONTINUOUS);
}

} // namespace sleepinhibitor
