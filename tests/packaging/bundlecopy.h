#pragma once

#include "tests/support/filecontent.h"

#include <QProcessEnvironment>
#include <QString>
#include <QStringList>

/// What a script said, on both of its outputs, and its exit code; -1: it did not end by itself.
struct ScriptRun
{
    int code = -1;
    QString output;

    [[nodiscard]] bool says(const QString& text) const { return output.contains(text); }
};

/// Installs into this folder what the bundle holds beside the program and its libraries. False: it did not
/// work.
[[nodiscard]] bool installSurroundings(const QString& folder);

/// Copies a folder with all that is in it, under another name.
[[nodiscard]] bool copyFolder(const QString& source, const QString& target);

/// Writes an executable file; false if that is not possible.
[[nodiscard]] bool writeExecutable(const QString& path, const QByteArray& content);

/// Runs a command to its end, with nothing on its input.
[[nodiscard]] ScriptRun runScript(const QString& command, const QStringList& arguments,
                                  const QProcessEnvironment& environment);
