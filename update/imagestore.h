#pragma once

#include <QByteArray>
#include <QString>

/// The firmware image on disk: the image itself, the new download beside it and the backup of the previous
/// image. At every moment the previous image or the new one is whole under one of the
/// three names, also when the process is killed.
class ImageStore
{
public:
    static constexpr auto imageFile = "updater.sb";
    static constexpr auto downloadSuffix = ".upd";
    static constexpr auto backupSuffix = ".bkp";

    /// The image's path: beside the program, wherever it was started.
    [[nodiscard]] static QString imagePath();

    explicit ImageStore(const QString& path = imagePath());

    /// Removes an earlier download and, unless it is the only image there is, the backup; writes `image` as
    /// the new download.
    /// False if it could not be created or does not hold every byte; no download is left then.
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
