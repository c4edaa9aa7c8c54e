#include "tests/harness/wine.h"

#include "tests/support/limits.h"
#include "tests/support/windowsproxy.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QUrl>

namespace {

void startCommand(QProcess& process, const QString& name, const QStringList& arguments,
                  const QProcessEnvironment& environment)
{
    process.setProcessEnvironment(environment);
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.setStandardOutputFile(QProcess::nullDevice()); // Wine's server keeps a pipe open
    process.start(name, arguments);
}

Outcome runCommand(const QString& name, const QStringList& arguments,
                   const QProcessEnvironment& environment = QProcessEnvironment::systemEnvironment())
{
    QProcess process;
    startCommand(process, name, arguments, environment);
    return wine::waitForEnd(process);
}

/// A copy of the prepared prefix.
class Prefix
{
public:
    Prefix() : made(runCommand(TALVEX_COPY_PREFIX, {folder.path()})) {}
    ~Prefix()
    {
        QProcessEnvironment own = QProcessEnvironment::systemEnvironment();
        own.insert("WINEPREFIX", folder.path());
        (void)runCommand("wineserver", {"-k"}, own);
    }
    Q_DISABLE_COPY_MOVE(Prefix)

    static Prefix& only()
    {
        static Prefix one;
        return one;
    }

    QTemporaryDir folder{qEnvironmentVariable("TALVEX_WINE_PREFIX") + "-XXXXXX"}; ///< on its file system
    Outcome made;
    QByteArray proxy = windowsproxy::settings({}); ///< as it stands in the registry
    QProcessEnvironment environment;               ///< of the latest program
};

Outcome setInRegistry(const QStringList& value)
{
    QProcess reg;
    wine::start(reg, QStringList{"reg", "add"} + value + QStringList{"/f"});
    return wine::waitForEnd(reg);
}

} // namespace

namespace wine {

bool isUsed()
{
    return qEnvironmentVariableIsSet("TALVEX_TEST_WINDOWS");
}

QString programName()
{
    return isUsed() ? "talvex-updater.exe" : "talvex-updater";
}

Outcome unpack(const QString& folder)
{
    STEP(runCommand("cp", {"-r", qEnvironmentVariable("TALVEX_TEST_WINDOWS") + "/.", folder}));
    return runCommand("cp", {"-r", qEnvironmentVariable("TALVEX_WINDOWS_BESIDE") + "/.", folder});
}

Outcome prepare(QProcessEnvironment& environment, const QVector<QStringList>& registry)
{
    Prefix& prefix = Prefix::only();
    if (!prefix.made.good())
        return prefix.made;
    environment.insert("WINEPREFIX", prefix.folder.path());
    environment.insert("WINEDEBUG", environment.value("WINEDEBUG", "-all"));
    environment.insert("WINEDLLOVERRIDES", "mscoree,mshtml=;cfgmgr32=n,b"); // one beside the program first
    environment.insert("WINEQT_FORCE_STDERR_LOGGING", "1");
    prefix.environment = environment;
    const QByteArray proxy =
        windowsproxy::settings(QUrl(environment.value("http_proxy")).authority().toLatin1(),
                               environment.value("TALVEX_PROXY_SCRIPT").toLatin1());
    if (proxy != prefix.proxy) {
        STEP(setInRegistry({QString("HKCU\\") + windowsproxy::key, "/v", windowsproxy::name, "/t",
                            "REG_BINARY", "/d", QString::fromLatin1(proxy.toHex())}));
        prefix.proxy = proxy;
    }
    for (const QStringList& value : registry)
        STEP(setInRegistry(value));
    return {};
}

void start(QProcess& process, const QStringList& command)
{
    startCommand(process, "wine", command, Prefix::only().environment);
}

Outcome waitForEnd(QProcess& process)
{
    const bool ended = process.state() == QProcess::NotRunning || process.waitForFinished(limits::hangMs());
    const bool good = ended && process.error() == QProcess::UnknownError && process.exitCode() == 0 &&
                      process.exitStatus() == QProcess::NormalExit;
    return good ? Outcome() : Outcome(process.program() + ' ' + process.arguments().join(' ') + " failed");
}

QString windowsPath(const QString& file)
{
    return Prefix::only().folder.filePath("drive_c/windows/" + file);
}

} // namespace wine
