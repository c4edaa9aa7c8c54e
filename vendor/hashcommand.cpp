#include "base/sizelimit.h"
#include "net/catalogue.h"
#include "vendor/commands.h"
#include "vendor/digestlines.h"
#include "vendor/files.h"
#include "vendor/terminal.h"

#include <QSaveFile>

#include <optional>

namespace commands {

namespace {

/// The digest of an image that the program would accept, in hexadecimal digits.
std::optional<QByteArray> digestOf(const QString& path)
{
    const auto image = readFile(path);
    if (!image)
        return std::nullopt;
    const qint64 size = image->size();
    if (size == 0 || size > sizeLimit) {
        terminal::complain(path + QString(": %1; an image has 1 to %2 bytes")
                                      .arg(size == 0 ? "empty" : "too large")
                                      .arg(sizeLimit));
        return std::nullopt;
    }
    return catalogue::digestOf(*image).toLatin1();
}

/// Why no digest can be written into the catalogue; empty if one can.
QString obstacleIn(const QByteArray& bytes)
{
    if (bytes.size() > sizeLimit)
        return QString("more than %1 bytes").arg(sizeLimit);
    if (bytes.contains('\0'))
        return "contains a NUL byte: the updater ignores the rest";
    return {};
}

bool save(const QString& path, const QByteArray& bytes)
{
    QSaveFile file(path);
    if (file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size() && file.commit())
        return true;
    terminal::complain(path + ": " + file.errorString());
    return false;
}

} // namespace

int hash(const options::Hash& wanted)
{
    const auto before = readFile(wanted.file);
    if (!before)
        return options::faulty;
    if (const QString obstacle = obstacleIn(*before); !obstacle.isEmpty()) {
        terminal::complain(wanted.file + ": " + obstacle);
        return options::faulty;
    }
    QByteArray bytes = *before;
    for (const options::Image& image : wanted.images) {
        const auto digest = digestOf(image.path);
        if (!digest)
            return options::faulty;
        const auto completed = withDigest(bytes, image.stem, *digest);
        if (!completed) {
            terminal::complain(wanted.file + ": no line for " + image.stem + ": run check");
            return options::faulty;
        }
        bytes = *completed;
    }
    if (bytes == *before)
        return options::good;
    if (!save(wanted.file, bytes))
        return options::faulty;
    terminal::complain(wanted.file + " has changed: its signature is no longer valid, sign it again");
    return options::good;
}

} // namespace commands
