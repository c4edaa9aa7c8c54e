#include "net/updatechecker.h"
#include "update/openeraddress.h"

#include <QProcess>

namespace {

#if defined(Q_OS_MACOS)
constexpr auto opener = "open";
#elif defined(Q_OS_WIN)
constexpr auto opener = "explorer";
#else
constexpr auto opener = "xdg-open";
#endif

} // namespace

/// Passes the address of the newer updater to the system's opener, and so to the user's browser.
void UpdateChecker::onNeedDownloadNewMainFirmware()
{
    if (!QProcess::startDetached(opener, {openerAddress(mainBinUrl)}))
        qErrnoWarning("Can't start %s", opener);
    emit startDownloadMainUpdate();
}
