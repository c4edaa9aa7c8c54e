#pragma once

#include <QString>
#include <QStringList>

/// The surroundings of the program's objects under a fuzzer: an application without a screen, no diagnostics,
/// time that does not pass and a user who dismisses every box at once.
namespace quietprogram {

/// Creates the application, which lives to the process's end. Once.
void start();

/// The texts of the boxes since the last call, in the order they opened.
[[nodiscard]] QStringList takeBoxes();

/// Lets the single shots that are waiting fire, and those they lead to, at most this many. Returns how many
/// did.
int fireTimers(int most);

} // namespace quietprogram
