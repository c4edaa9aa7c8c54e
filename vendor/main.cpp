#include "base/shownversion.h"
#include "base/updaterversion.h"
#include "vendor/commands.h"
#include "vendor/terminal.h"

#include <QCoreApplication>
#include <QNetworkProxyFactory>

#include <cstdio>

namespace {

int print(const options::Message& message)
{
    const QByteArray text = message.text.toUtf8();
    if (message.exitCode == options::good)
        return terminal::print(text) ? options::good : options::faulty;
    (void)std::fputs(text.constData(), stderr);
    return message.exitCode;
}

} // namespace

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationVersion(shownUpdaterVersion(updaterVersion));
    QNetworkProxyFactory::setUseSystemConfiguration(true);
    const options::Command command = options::read(QCoreApplication::arguments());
    if (const auto* check = std::get_if<options::Check>(&command))
        return commands::check(*check);
    if (const auto* hash = std::get_if<options::Hash>(&command))
        return commands::hash(*hash);
    return print(std::get<options::Message>(command));
}
