#include "vendor/files.h"

#include "base/sizelimit.h"
#include "vendor/terminal.h"

#include <QFile>

#include <algorithm>

namespace {

/// Piece by piece: a device may hold no end, and tells no size.
QByteArray readUpToLimit(QFile& file)
{
    constexpr qint64 pieceSize = 1024LL * 1024;
    QByteArray bytes;
    while (bytes.size() <= sizeLimit) {
        const QByteArray piece = file.read(std::min(pieceSize, sizeLimit + 1 - bytes.size()));
        if (piece.isEmpty())
            break;
        bytes += piece;
    }
    return bytes;
}

} // namespace

std::optional<QByteArray> readFile(const QString& path)
{
    QFile file(path);
    if (file.open(QIODevice::ReadOnly)) {
        QByteArray bytes = readUpToLimit(file);
        if (file.error() == QFileDevice::NoError)
            return bytes;
    }
    terminal::complain(path + ": " + file.errorString());
    return std::nullopt;
}
