#pragma once

#include "tests/support/rawserver.h"

#include <QProcessEnvironment>
#include <QStringList>
#include <QTemporaryDir>

/// talvex-catalogue as a process, in a directory of its own, and the server that every http address leads it
/// to.
class Tool
{
public:
    struct Outcome
    {
        int exitCode = -1; ///< -1: it crashed, or came to no end
        QByteArray output;
        QByteArray errors;
    };

    /// Runs it to its end, while the server answers.
    [[nodiscard]] Outcome run(const QStringList& arguments) { return run(program(), arguments); }
    /// The same on a terminal, where output and errors are one.
    [[nodiscard]] Outcome runOnTerminal(const QString& arguments);

    /// The same where standard output cannot be written.
    [[nodiscard]] Outcome runIntoFullDisk(const QStringList& arguments);

    void write(const QString& name, const QByteArray& bytes) const;
    [[nodiscard]] QByteArray read(const QString& name) const;
    [[nodiscard]] QString path(const QString& name) const { return directory.filePath(name); }

    [[nodiscard]] static QString program();
    /// For a process that is to reach the server.
    [[nodiscard]] QProcessEnvironment environment() const;

    RawServer server;

private:
    Outcome run(const QString& command, const QStringList& arguments);

    QTemporaryDir directory;
};
