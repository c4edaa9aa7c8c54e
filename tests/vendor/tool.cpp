#include "tests/vendor/tool.h"

#include "tests/harness/childprocess.h"
#include "tests/harness/waiting.h"

QString Tool::program()
{
    return TALVEX_CATALOGUE_TOOL;
}

QProcessEnvironment Tool::environment() const
{
    auto environment = QProcessEnvironment::systemEnvironment();
    environment.insert("http_proxy", server.address({}));
    return environment;
}

Tool::Outcome Tool::run(const QString& command, const QStringList& arguments)
{
    ChildProcess process;
    process.setProcessEnvironment(environment());
    process.setWorkingDirectory(directory.path());
    process.start(command, arguments);
    if (!waitUntil([&] { return process.state() == QProcess::NotRunning; }) ||
        process.exitStatus() != QProcess::NormalExit)
        return {};
    return {process.exitCode(), process.readAllStandardOutput(), process.readAllStandardError()};
}

Tool::Outcome Tool::runOnTerminal(const QString& arguments)
{
    return run("script", {"-qec", program() + ' ' + arguments, "/dev/null"});
}

Tool::Outcome Tool::runIntoFullDisk(const QStringList& arguments)
{
    return run("sh", QStringList{"-c", "exec \"$0\" \"$@\" > /dev/full", program()} + arguments);
}
