#pragma once

#include <QString>
#include <QStringList>

#include <vector>

/// What can be seen of a run from outside the program: on the bus, at the server, on the disk, in the boxes,
/// and by the user's own fingers.
struct Observed
{
    bool handleOpen = false;    ///< the program holds a unit open
    bool pair = false;          ///< two of them
    bool imageThere = false;    ///< a service file, or an image that has arrived whole
    bool awaitsForEver = false; ///< an answer that never ends was asked for
    bool logKeyPressed = false; ///< while a unit was open
    bool updatePressed = false; ///< Update Device, while it was enabled
    bool logPressed = false;    ///< Download log file, likewise
    bool stopPressed = false;   ///< Stop downloading, likewise
    bool logEndTold = false;    ///< the closing box of a log came up
};

/// A control that the user can press.
enum class Control { connect, update, log, stop };

/// Whether the control may be enabled and visible in this state: the table of the window's states.
[[nodiscard]] bool mayBeEnabled(Control control, const Observed& now);

/// A press that the program must not refuse in this state.
[[nodiscard]] bool mustBeEnabled(Control control, const Observed& now);

[[nodiscard]] const char* objectNameOf(Control control);
