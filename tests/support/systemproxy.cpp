#include "tests/support/systemproxy.h"

#ifdef Q_OS_WIN
#include "tests/support/windowsproxy.h"

#include <QUrl>

#include <windows.h>

void setSystemProxy(const QString& address)
{
    const QByteArray value = windowsproxy::settings(QUrl(address).authority().toLatin1());
    if (RegSetKeyValueA(HKEY_CURRENT_USER, windowsproxy::key, windowsproxy::name, REG_BINARY,
                        value.constData(), static_cast<DWORD>(value.size())) != ERROR_SUCCESS)
        qFatal("cannot set the system's proxy");
}
#else
void setSystemProxy(const QString& address)
{
    qputenv("http_proxy", address.toUtf8());
}
#endif
