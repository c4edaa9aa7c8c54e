#pragma once

#include "ui/mainwindow.h"

/// The last thing the program does: asks the worker to end and closes the open units, so that the system's
/// HID driver has them again (the libusb flavour re-attaches it in hid_close only).
namespace leftovers {

/// To be called once the event loop has ended, with its result. Asks the worker to end, and ends the process
/// itself should the destruction of window and application take longer than 2 s (Qt waits for its host name
/// look-ups there).
void limitTheEnd(const MainWindow::Leftovers& leftovers, int exitCode);

/// Waits briefly for the worker and closes the handles; none if the worker is still blocked in a read.
void giveBack(const MainWindow::Leftovers& leftovers);

} // namespace leftovers
