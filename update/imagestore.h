#pragma once

#include <QByteArray>
#include <QString>

/// The firmware image on disk: the image itself, the new download and the backup of the previous image, side
/// by side. At every moment, even if the process is killed, the previous or the new image is whole under one
/// of the three names.
class ImageStore
{
public:
    static constexpr auto imageFile = "updater.sb";
    static constexpr auto downloadSuffix = ".upd";
    static constexpr auto backupSuffix = ".bkp";

    /// The image's path: beside the program, whatever the working directory.
    [[nodiscard]] static QString imagePath();

    explicit ImageStore(const QString& path = imagePath());

    /// Removes an earlier download and, unless it is the only image there is, the backup; writes `image` as
    /// the new download.
    /// False if it could not be created or does not hold every byte; then no download remains, save an
    /// earlier one that another program holds open (Windows).
    [[nodiscard]] bool writeDownload(const QByteArray& image) const;

    /// Makes the image the backup and, if there is one that was `written`, the download the image. A backup
    /// goes when the download becomes the first image. False if an existing file could not be renamed.
    [[nodiscard]] bool replaceImage(bool written) const;

    [[nodiscard]] bool hasImage() const;

private:
    [[nodiscard]] bool holds(const QByteArray& image) const;

    QString imageName;
    QString downloadName;
    QString backupName;
};
