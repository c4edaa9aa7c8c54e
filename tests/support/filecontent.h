#pragma once

#include <QFile>
#include <QStringList>

/// The content of a file; null if it cannot be read, but not if there is nothing in it.
[[nodiscard]] inline QByteArray contentOf(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    const QByteArray content = file.readAll();
    return content.isNull() ? QByteArray("") : content;
}

/// The content of a file that must be there: ends the program if it cannot be read.
[[nodiscard]] inline QByteArray contentOrFatal(const QString& path)
{
    const QByteArray content = contentOf(path);
    if (content.isNull())
        qFatal("cannot read %s", qPrintable(path));
    return content;
}

/// The lines of a text file that are not empty; none if it cannot be read.
[[nodiscard]] inline QStringList linesOf(const QString& path)
{
    return QString::fromUtf8(contentOf(path)).split('\n', Qt::SkipEmptyParts);
}

/// Creates the file, or replaces what it holds. False if not all of it could be written.
[[nodiscard]] inline bool writeFile(const QString& path, const QByteArray& content)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(content) == content.size() && file.flush();
}
