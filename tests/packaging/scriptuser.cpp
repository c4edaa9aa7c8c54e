#include "tests/packaging/scriptuser.h"

#include <QDir>
#include <QStandardPaths>

#include <algorithm>
#include <array>

namespace {

constexpr const char* program = "#!/bin/sh\nprintf '%s\\n' \"$0\" \"$PWD\" > \"$STARTED.new\"\n"
                                "mv \"$STARTED.new\" \"$STARTED\"\n";

/// Not what the script becomes root with.
constexpr std::array tools{"cat",   "chmod", "cmp", "cut", "df", "dirname", "find",  "grep", "iconv", "ls",
                           "mkdir", "mv",    "rm",  "sed", "sh", "sort",    "touch", "tr",   "uname"};

/// What all copies are made of; nothing if it could not be made. It has a plain name, and cp copies it under
/// any other.
QString original()
{
    static const QTemporaryDir folder;
    static const bool made =
        installSurroundings(folder.path()) && writeExecutable(folder.filePath("talvex-updater"), program);
    return made ? folder.path() : QString();
}

} // namespace

ScriptUser::ScriptUser()
{
    const auto link = [&](const char* tool) {
        return QFile::link(QStandardPaths::findExecutable(tool), path("bin/") + tool);
    };
    ready = QDir(base.path()).mkdir("bin") && std::all_of(tools.begin(), tools.end(), link) &&
            setCommand("id", "#!/bin/sh\necho 1000\n") &&
            setCommand("sudo", "#!/bin/sh\necho sudo >> \"$ASKED\"\nexit 1\n");
    environment.insert("PATH", path("bin"));
    environment.insert("HOME", path("home"));
    environment.insert("XDG_DATA_HOME", data());
    environment.insert("ASKED", path("asked"));
    environment.insert("STARTED", path("started"));
}

QString ScriptUser::entry() const
{
    return data() + "/applications/example.talvex.updater.desktop";
}

QStringList ScriptUser::asked() const
{
    return QString(contentOf(path("asked"))).split('\n', Qt::SkipEmptyParts);
}

QString ScriptUser::copyNamed(const QString& name) const
{
    return copyFolder(original(), path(name)) ? path(name) : QString();
}

bool ScriptUser::setCommand(const QString& name, const QByteArray& content) const
{
    QFile::remove(path("bin/") + name); // it may be a link to the system's
    return writeExecutable(path("bin/") + name, content);
}

bool ScriptUser::removeCommand(const QString& name) const
{
    return QFile::remove(path("bin/") + name);
}

ScriptRun ScriptUser::install(const QString& folder, const QStringList& arguments) const
{
    return runScript(folder + "/install-for-this-computer.sh", arguments, environment);
}
