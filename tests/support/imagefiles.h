#pragma once

#include <QByteArray>
#include <QString>

/// The content of a file that does not exist.
inline const QByteArray noFile;

/// The path of the image in the program's directory.
[[nodiscard]] QString programImage();

/// The names of the files beside an image.
/// @{
[[nodiscard]] QString downloadOf(const QString& imageName);
[[nodiscard]] QString backupOf(const QString& imageName);
/// @}

/// The firmware image on disk and its two companion files. Null content means that the file does not exist.
struct ImageFiles
{
    QByteArray image;
    QByteArray download;
    QByteArray backup;

    /// The files that currently exist.
    [[nodiscard]] static ImageFiles at(const QString& imageName);

    /// Makes exactly these files exist, also removing a folder that has one of the names. False on failure.
    [[nodiscard]] bool placeAt(const QString& imageName) const;

    bool operator==(const ImageFiles& other) const;
};

/// For the message of a failed test: lengths and first bytes. The caller must delete[] the text.
char* toString(const ImageFiles& files);
