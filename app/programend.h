#pragma once

#include "ui/mainwindow.h"

/// The last thing the program does: asks the worker to end and closes the open units, so that the system's
/// HID driver gets them back (the libusb flavour re-attaches it only in hid_close).
namespace programend {

/// Call when the program starts to end: from now on nothing is written to a unit. If the end takes longer
/// than 2.5 s, gives the unit back (waits at most 400 ms for that) and ends the process: Qt waits for its
/// host name look-ups, and a write may block for longer. In the hidraw flavour the kernel keeps a process
/// until its blocked write returns, after at most 5 s; until then its window stays on the screen, without
/// reacting. Only the first call counts. Any thread.
void limitTheEnd(int exitCode);

/// Ends the worker and the network thread while the application object still exists: an event that Qt
/// delivers on another thread during its destruction calls through a null pointer. A worker blocked in a read
/// gets no events and is abandoned after 300 ms; one blocked in a write is waited for. GUI thread.
void endThreads(const MainWindow::Leftovers& leftovers);

/// Closes the open units once the calls on them have ended; closes none if the worker is blocked in a read.
void giveBack();

/// Makes exit(), which Qt calls when the display is lost, give the unit back too and end the process then
/// and there, with EXIT_FAILURE.
void giveBackAtExit();

} // namespace programend
