#pragma once

#include "tests/harness/outcome.h"

#include <QProcessEnvironment>
#include <QString>
#include <QStringList>
#include <QVector>

class QProcess;

/// The program for Windows under Wine, in the place of the one for this system. Used if TALVEX_TEST_WINDOWS
/// names the folder that its users unpack; everything else that is needed also comes from the environment
/// (scripts/lib/windows.sh): TALVEX_WINE_PREFIX, a prefix to copy, and TALVEX_WINDOWS_BESIDE, a folder of
/// what is laid beside the program: the probe, and with it the virtual HID library in the real one's place,
/// or what Wine lacks for the real one. One copy of the prefix serves the whole test program.
namespace wine {

[[nodiscard]] bool isUsed();

/// The program's file name: "talvex-updater", with ".exe" for Windows.
[[nodiscard]] QString programName();

/// Puts the program for Windows into this folder, with what is laid beside it.
Outcome unpack(const QString& folder);

/// Takes what Wine needs into the environment, on the desktop that it names, and makes these values, and the
/// proxy that it names, settings of the Windows that the program sees. `registry`: arguments of "reg add".
Outcome prepare(QProcessEnvironment& environment, const QVector<QStringList>& registry);

/// Starts a program of Windows' own in the same prefix.
void start(QProcess& process, const QStringList& command);

/// Waits until it has ended; a failure if it did not do so by itself with exit code 0.
Outcome waitForEnd(QProcess& process);

/// A file of Windows: "explorer.exe" lies in its folder.
[[nodiscard]] QString windowsPath(const QString& file);

} // namespace wine
