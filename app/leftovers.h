#pragma once

#include "ui/mainwindow.h"

/// The last thing the program does: asks the worker to end and closes the open units, so that the system's
/// HID driver has them again (the libusb flavour re-attaches it in hid_close only).
namespace leftovers {

/// The program's end begins: nothing more is written to a unit. Ends the process itself, and gives the unit
/// back, should the end take longer than 2.5 s: Qt waits for its host name look-ups, and a write may block
/// for longer. The first call counts. Any thread.
void limitTheEnd(int exitCode);

/// Ends the worker and the network's thread while the application is whole: an event that Qt delivers on
/// another thread while the application object goes calls through a null pointer. A worker that is blocked in
/// a read gets no events; it is left after 300 ms. One that is blocked in a write is waited for. GUI thread.
void endThreads(const MainWindow::Leftovers& leftovers);

/// Closes the open units once the calls on them have ended; none if the worker is blocked in a read.
void giveBack();

/// Has exit() give the unit back, too: Qt calls it when the display is lost.
void giveBackAtExit();

} // namespace leftovers
