#pragma once

#include <QByteArray>
#include <QString>

/// The user's terminal, if there is one.
namespace terminal {

[[nodiscard]] bool isOutput(); ///< whether standard output is one
[[nodiscard]] bool isErrors(); ///< whether standard error is one

/// Prints a line on standard error, after the program's name; unprintable characters are escaped.
void complain(const QString& line);

/// Writes to standard output, with nothing left in its buffer. False, after a complaint, if that fails.
[[nodiscard]] bool print(const QByteArray& bytes);

/// Replaces the line of progress on standard error; an empty one removes it.
void showProgress(const QString& line);

/// From now on Ctrl+C is noted instead of ending the process; a second one ends it. If the process was
/// started with Ctrl+C ignored, it stays ignored.
void noteInterrupts();
[[nodiscard]] bool isInterrupted();

} // namespace terminal
