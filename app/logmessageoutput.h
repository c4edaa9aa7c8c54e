#pragma once

#include <QtGlobal>

/// Appends `message` (local 8-bit encoding) with a time stamp to a log file in the working directory and
/// echoes it to standard output. The file is named after the time of the first message, for example
/// 2015-03-09_14_05_07.log; while it cannot be opened, there is only the echo. A null message puts standard
/// output into its failed state, so that later echoes are lost. No message type ends the program. Any thread.
void logMessageOutput(QtMsgType type, const char* message);
