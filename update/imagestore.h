#pragma once

#include <QByteArray>
#include <QString>

/// The firmware image on disk: the image itself, the new download beside it (".upd") and the backup of the
/// previous image (".bkp"). At every moment the previous image or the new one is whole under one of the
/// three names, also when the process is killed.
class ImageStore
{
public:
    explicit ImageStore(const QString& imagePath);

    /// Removes the ".upd" file of an earlier download and, unless it is the only image there is, the ".bkp"
    /// file; writes `image` to ".upd".
    /// False if it could not be created or does not hold every byte; nothing is left at ".upd" then.
    [[nodiscard]] bool writeDownload(const QByteArray& image) const;

    /// Makes the image the backup and the download the image. With no image before, no backup is left.
    /// False if a file that is there could not be renamed.
    [[nodiscard]] bool replaceImage() const;

    [[nodiscard]] bool hasImage() const;

private:
    [[nodiscard]] bool holds(const QByteArray& image) const;

    QString imageName;
    QString downloadName;
    QString backupName;
};
