#pragma once

#include "tests/support/filecontent.h"
#include "tests/support/rawserver.h"

#include <QProcessEnvironment>
#include <QStringList>
#include <QTemporaryDir>

/// Runs talvex-catalogue as a process in its own directory, with a server that receives all of its http
/// requests.
class Tool
{
public:
    struct Outcome
    {
        int exitCode = -1; ///< -1: it crashed or did not end
        QByteArray output;
        QByteArray errors;
    };

    /// Runs it to its end while serving its requests.
    [[nodiscard]] Outcome run(const QStringList& arguments) { return run(program(), arguments); }
    /// The same on a terminal, which merges output and errors.
    [[nodiscard]] Outcome runOnTerminal(const QString& arguments);

    /// The same, but writing to standard output fails.
    [[nodiscard]] Outcome runIntoFullDisk(const QStringList& arguments);

    void write(const QString& name, const QByteArray& bytes) const
    {
        if (!writeFile(path(name), bytes))
            qFatal("cannot write %s", qPrintable(path(name)));
    }
    [[nodiscard]] QByteArray read(const QString& name) const { return contentOf(path(name)); }
    [[nodiscard]] QString path(const QString& name) const { return directory.filePath(name); }

    [[nodiscard]] static QString program();
    /// The environment for a process that has to reach the server.
    [[nodiscard]] QProcessEnvironment environment() const;

    RawServer server;

private:
    Outcome run(const QString& command, const QStringList& arguments);

    QTemporaryDir directory;
};
