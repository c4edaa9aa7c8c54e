#include "vendor/files.h"

#include "vendor/terminal.h"

#include <QFile>

std::optional<QByteArray> readFile(const QString& path)
{
    QFile file(path);
    if (file.open(QIODevice::ReadOnly)) {
        QByteArray bytes = file.readAll();
        if (file.error() == QFileDevice::NoError)
            return bytes;
    }
    terminal::complain(path + ": " + file.errorString());
    return std::nullopt;
}
