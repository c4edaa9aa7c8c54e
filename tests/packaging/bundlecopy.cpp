#include "tests/packaging/bundlecopy.h"

#include "tests/support/limits.h"

#include <QProcess>

bool installSurroundings(const QString& folder)
{
    const QStringList arguments{"--install", TALVEX_BUILD, "--component", "surroundings", "--prefix", folder};
    return runScript(TALVEX_CMAKE, arguments, QProcessEnvironment::systemEnvironment()).code == 0;
}

bool copyFolder(const QString& source, const QString& target)
{
    return QProcess::execute("cp", {"-r", "--", source, target}) == 0;
}

bool writeExecutable(const QString& path, const QByteArray& content)
{
    return writeFile(path, content) &&
           QFile::setPermissions(path, QFile::permissions(path) | QFile::ExeOwner | QFile::ExeGroup |
                                           QFile::ExeOther);
}

ScriptRun runScript(const QString& command, const QStringList& arguments,
                    const QProcessEnvironment& environment)
{
    QProcess process;
    process.setProcessEnvironment(environment);
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.setStandardInputFile(QProcess::nullDevice());
    process.start(command, arguments);
    if (!process.waitForFinished(limits::hangMs()) || process.exitStatus() != QProcess::NormalExit)
        return {-1, process.errorString() + process.readAll()};
    return {process.exitCode(), QString::fromUtf8(process.readAll())};
}
