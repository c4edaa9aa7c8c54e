#pragma once

#include <QByteArray>
#include <QString>

/// The firmware image on disk with its two companions. A null content stands for: there is no such file.
struct ImageFiles
{
    QByteArray image;
    QByteArray download; ///< ".upd"
    QByteArray backup;   ///< ".bkp"

    /// What lies there now.
    [[nodiscard]] static ImageFiles at(const QString& imageName);

    /// Makes it be these files and no others; a folder under one of the names goes too. False if it cannot.
    [[nodiscard]] bool placeAt(const QString& imageName) const;

    bool operator==(const ImageFiles& other) const;
};

/// For a failed test's reader: lengths and beginnings. The caller deletes the text.
char* toString(const ImageFiles& files);
