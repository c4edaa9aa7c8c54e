#pragma once

#include "bench/quickunit.h"
#include "ui/mainwindow.h"

#include <memory>

/// The real window, shown, and connected with `unit` by its own button. An image of that many bytes lies
/// beside the program as the service file, so that no server is asked; Update Device is enabled.
[[nodiscard]] std::unique_ptr<MainWindow> connectedWindow(const std::shared_ptr<QuickUnit>& unit,
                                                          int imageBytes);

/// Presses the button of that object name.
void press(const MainWindow& window, const char* button);

/// Dismisses the next message box.
void dismissNextBox();
