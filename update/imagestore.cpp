#include "update/imagestore.h"

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>

#ifdef Q_OS_WIN
#include <io.h>
#else
#include <unistd.h>
#endif

namespace {

/// Flushes the file's bytes to the disk before a rename makes them the image (fsync(2), _commit).
bool sync(const QFile& file)
{
#ifdef Q_OS_WIN
    return _commit(file.handle()) == 0;
#else
    return fsync(file.handle()) == 0;
#endif
}

} // namespace

QString ImageStore::imagePath()
{
    return QCoreApplication::applicationDirPath() + '/' + imageFile;
}

ImageStore::ImageStore(const QString& path)
    : imageName(path), downloadName(path + downloadSuffix), backupName(path + backupSuffix)
{
}

bool ImageStore::hasImage() const
{
    return QFile::exists(imageName);
}

bool ImageStore::writeDownload(const QByteArray& image) const
{
    QFile::remove(downloadName);
    // Otherwise the backup is the only image (a folder is none) and is kept until the new one is whole.
    if (QFileInfo(imageName).isFile())
        QFile::remove(backupName);
    QFile download(downloadName);
    if (!download.open(QIODevice::WriteOnly | QIODevice::Truncate))
        return false;
    const bool written = download.write(image) == image.size() && download.flush() && sync(download);
    download.close();
    if (written && download.error() == QFile::NoError && holds(image))
        return true;
    download.remove();
    return false;
}

/// Reads the download back, piece by piece: a full disk may become apparent only here.
bool ImageStore::holds(const QByteArray& image) const
{
    constexpr int pieceSize = 64 * 1024;
    QFile download(downloadName);
    if (!download.open(QIODevice::ReadOnly) || download.size() != image.size())
        return false;
    for (int start = 0; start < image.size(); start += pieceSize) {
        const QByteArray piece = image.mid(start, pieceSize);
        if (download.read(piece.size()) != piece)
            return false;
    }
    return true;
}

bool ImageStore::replaceImage(bool written) const
{
    const bool hadImage = hasImage();
    if (hadImage && !QFile::rename(imageName, backupName))
        return false;
    if (written && QFileInfo(downloadName).isFile() && !QFile::rename(downloadName, imageName))
        return false;
    if (!hadImage && hasImage()) // the backup of an image that no longer exists
        QFile::remove(backupName);
    return true;
}
