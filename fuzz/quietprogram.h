#pragma once

#include <QString>
#include <QStringList>

/// The environment for fuzzing the program's objects: an application without a screen, no diagnostics, a
/// clock that stands still and a user who dismisses every box immediately.
namespace quietprogram {

/// Creates the application, which lives until the process ends. Call it once.
void start();

/// The texts of the boxes opened since the last call, in order.
[[nodiscard]] QStringList takeBoxes();

/// Fires pending single-shot timers, and those that they start, up to `most` in all. Returns how many fired.
int fireTimers(int most);

} // namespace quietprogram
