#pragma once

#include <QString>
#include <QStringList>

#include <vector>

/// What can be observed of a run from outside the program: on the bus, at the server, on the disk, in the
/// boxes, and in what the user presses.
struct Observed
{
    bool handleOpen = false;    ///< the program has a unit open
    bool pair = false;          ///< two units are open
    bool imageThere = false;    ///< a service file, or a completely downloaded image
    bool awaitsForEver = false; ///< a request was made whose answer never ends
    bool logKeyPressed = false; ///< while a unit was open
    bool updatePressed = false; ///< Update Device, while enabled
    bool logPressed = false;    ///< Download log file, likewise
    bool stopPressed = false;   ///< Stop downloading, likewise
    bool logEndTold = false;    ///< the box that ends a log download appeared
};

/// A control that the user can press.
enum class Control { connect, update, log, stop };

/// Whether the control may be enabled and visible in this state, according to the window's state table.
[[nodiscard]] bool mayBeEnabled(Control control, const Observed& now);

/// Whether the control must be enabled in this state, so that a press is accepted.
[[nodiscard]] bool mustBeEnabled(Control control, const Observed& now);

[[nodiscard]] const char* objectNameOf(Control control);
