#include "tests/harness/wine.h"

#include "tests/support/limits.h"
#include "tests/support/windowsproxy.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QUrl>

namespace {

/// Runs a command to its end; its name is for the outcome.
Outcome runCommand(const QString& name, const QStringList& arguments,
                   const QProcessEnvironment& environment = QProcessEnvironment::systemEnvironment())
{
    QProcess process;
    process.setProcessEnvironment(environment);
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.setStandardOutputFile(QProcess::nullDevice()); // Wine's server keeps a pipe open
    process.start(name, arguments);
    const bool good = process.waitForFinished(limits::hangMs()) && process.exitCode() == 0 &&
                      process.exitStatus() == QProcess::NormalExit;
    return good ? Outcome() : Outcome(name + ' ' + arguments.join(' ') + " failed");
}

/// A copy of the prepared prefix: links to the files of the system that nobody writes, and a registry of its
/// own.
class Prefix
{
public:
    Prefix()
    {
        const QString model = qEnvironmentVariable("TALVEX_WINE_PREFIX");
        made = runCommand("cp", {"-al", model + "/.", folder.path()});
        for (const char* file : {"system.reg", "user.reg", "userdef.reg"}) {
            QFile::remove(folder.filePath(file));
            if (made.good() && !QFile::copy(model + '/' + file, folder.filePath(file)))
                made = Outcome("cannot copy the registry of " + model);
        }
    }
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

    QTemporaryDir folder;
    Outcome made;
    QByteArray proxy = windowsproxy::settings({}); ///< as it stands in the registry
    QProcessEnvironment environment;               ///< of the latest program
};

Outcome setInRegistry(const QStringList& value)
{
    return wine::run(QStringList{"reg", "add"} + value + QStringList{"/f"});
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
    const QString library = folder + "/hidapi.dll";
    return QFile::remove(library) && QFile::copy(qEnvironmentVariable("TALVEX_WINDOWS_HID"), library)
               ? Outcome()
               : Outcome("cannot put the virtual HID library at " + library);
}

Outcome prepare(QProcessEnvironment& environment, const QVector<QStringList>& registry)
{
    Prefix& prefix = Prefix::only();
    if (!prefix.made.good())
        return prefix.made;
    environment.insert("WINEPREFIX", prefix.folder.path());
    environment.insert("WINEDEBUG", environment.value("WINEDEBUG", "-all"));
    environment.insert("WINEDLLOVERRIDES", "mscoree,mshtml=");
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

Outcome run(const QStringList& command)
{
    return runCommand("wine", command, Prefix::only().environment);
}

QString windowsPath(const QString& file)
{
    return Prefix::only().folder.filePath("drive_c/windows/" + file);
}

} // namespace wine
