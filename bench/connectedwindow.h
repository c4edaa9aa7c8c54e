#pragma once

#include "bench/quickunit.h"
#include "ui/mainwindow.h"

#include <memory>

/// The real window, shown, and connected to `unit` with its Connect button. An image of `imageBytes` bytes
/// is in the program's directory as the service file, so that no server is contacted; Update Device is
/// enabled.
[[nodiscard]] std::unique_ptr<MainWindow> connectedWindow(const std::shared_ptr<QuickUnit>& unit,
                                                          int imageBytes);

/// Presses the button with this object name.
void press(const MainWindow& window, const char* button);

/// Dismisses the next message box.
void dismissNextBox();
