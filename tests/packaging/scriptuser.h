#pragma once

#include "tests/packaging/bundlecopy.h"

#include <QTemporaryDir>

/// Somebody who has unpacked the bundle, on a system with nothing but the commands that the installation
/// script needs and a sudo that notes that it was asked, and refuses.
class ScriptUser
{
public:
    ScriptUser();

    /// Whether the system could be made.
    [[nodiscard]] bool isReady() const { return ready; }

    /// A file or folder of this user's own.
    [[nodiscard]] QString path(const QString& name) const { return base.filePath(name); }

    /// The folder that menus look into, and the program's entry there.
    [[nodiscard]] QString data() const { return path("data"); }
    [[nodiscard]] QString entry() const;

    /// Who was asked for root, by the names of the commands, in order.
    [[nodiscard]] QStringList asked() const;

    /// One more copy of the bundle in a folder of this name; returns the folder, or nothing if that is not
    /// possible. Its program notes in path("started") where it was started and from which folder.
    [[nodiscard]] QString copyNamed(const QString& name) const;

    /// Puts a command of this content into the place of the system's, or takes it away.
    [[nodiscard]] bool setCommand(const QString& name, const QByteArray& content) const;
    [[nodiscard]] bool removeCommand(const QString& name) const;

    /// Runs the installation script of a copy.
    [[nodiscard]] ScriptRun install(const QString& folder, const QStringList& arguments = {}) const;

    QProcessEnvironment environment;

private:
    QTemporaryDir base;
    bool ready = false;
};
