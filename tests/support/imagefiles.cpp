#include "tests/support/imagefiles.h"

#include "tests/support/filecontent.h"
#include "tests/support/programfiles.h"
#include "tests/support/texts.h"

#include <QDir>

namespace {

bool makeContent(const QString& name, const QByteArray& content)
{
    if (QFile::exists(name) && !QFile::remove(name) && !QDir(name).removeRecursively())
        return false;
    return content.isNull() || writeFile(name, content);
}

/// A missing file is not an empty one.
bool same(const QByteArray& left, const QByteArray& right)
{
    return left == right && left.isNull() == right.isNull();
}

QByteArray summary(const QByteArray& content)
{
    return content.isNull()
               ? QByteArray("none")
               : QByteArray::number(content.size()) + " bytes '" + content.left(3).toPercentEncoding() + "'";
}

} // namespace

QString programImage()
{
    return besideProgram(filename::image);
}

QString downloadOf(const QString& imageName)
{
    return imageName + ".upd";
}

QString backupOf(const QString& imageName)
{
    return imageName + ".bkp";
}

ImageFiles ImageFiles::at(const QString& imageName)
{
    return {contentOf(imageName), contentOf(downloadOf(imageName)), contentOf(backupOf(imageName))};
}

bool ImageFiles::placeAt(const QString& imageName) const
{
    return makeContent(imageName, image) && makeContent(downloadOf(imageName), download) &&
           makeContent(backupOf(imageName), backup);
}

bool ImageFiles::operator==(const ImageFiles& other) const
{
    return same(image, other.image) && same(download, other.download) && same(backup, other.backup);
}

char* toString(const ImageFiles& files)
{
    return qstrdup("image " + summary(files.image) + ", download " + summary(files.download) + ", backup " +
                   summary(files.backup));
}
