#include "net/updatechecker.h"
#include "update/openeraddress.h"

#include <QProcess>

#ifdef Q_OS_WIN
#include <windows.h>

#include <array>
#endif

namespace {

#if defined(Q_OS_MACOS)
constexpr auto opener = "open";
#elif defined(Q_OS_WIN)
constexpr auto opener = "explorer.exe";
#else
constexpr auto opener = "xdg-open";
#endif

#ifdef Q_OS_WIN
/// Explorer in Windows' own folder: asked for by its bare name, Windows would start one that somebody has put
/// beside this program. It parts its options by commas and blanks, so the address is always in quotes, which
/// no quote in the address may end.
bool handOver(const QString& address)
{
    std::array<wchar_t, MAX_PATH> folder{};
    const UINT length = GetSystemWindowsDirectoryW(folder.data(), MAX_PATH);
    QProcess explorer;
    explorer.setProgram(QString::fromWCharArray(folder.data(), static_cast<int>(length)) + '\\' + opener);
    explorer.setNativeArguments('"' + QString(address).replace('"', "%22") + '"');
    return length > 0 && length < MAX_PATH && explorer.startDetached();
}
#else
bool handOver(const QString& address)
{
    return QProcess::startDetached(opener, {address});
}
#endif

} // namespace

/// Passes the address of the newer updater to the system's opener, and so to the user's browser.
void UpdateChecker::onNeedDownloadNewMainFirmware()
{
    if (!handOver(openerAddress(mainBinUrl)))
        qErrnoWarning("Can't start %s", opener);
    emit startDownloadMainUpdate();
}
