#pragma once

#include <QProcessEnvironment>
#include <QString>

/// Nothing of the caller's session reaches the program, save what it needs to run at all.
[[nodiscard]] QProcessEnvironment bareEnvironment();

/// Qt's own remark when a box's window went before the X server answered a question about it, or that Wine
/// lacks the pictures of message boxes; and the program's that it found no system bus, which is kept from it.
[[nodiscard]] bool isAboutSurroundings(const QString& line);
