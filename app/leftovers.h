#pragma once

#include "ui/mainwindow.h"

/// The last thing the program does: asks the worker to end and closes the open units, so that the system's
/// HID driver has them again (the libusb flavour re-attaches it in hid_close only).
namespace leftovers {

/// To be called once the event loop has ended, with its result: ends the process itself should the end of
/// threads, window and application take longer than 2 s (Qt waits for its host name look-ups there).
void limitTheEnd(const MainWindow::Leftovers& leftovers, int exitCode);

/// Ends the worker and the network's thread while the application is whole: an event that Qt delivers on
/// another thread while the application object goes calls through a null pointer. A worker that is blocked in
/// a read gets no events; it is left after 300 ms. GUI thread.
void endThreads(const MainWindow::Leftovers& leftovers);

/// Waits briefly for the worker and closes the handles; none if the worker is still blocked in a read.
void giveBack(const MainWindow::Leftovers& leftovers);

} // namespace leftovers
