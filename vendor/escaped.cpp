#include "vendor/escaped.h"

#include <QVector>

QString escaped(const QString& text)
{
    QString shown;
    for (const uint character : text.toUcs4()) {
        if (character == '\\')
            shown += "\\\\";
        else if (QChar::isPrint(character))
            shown += QString::fromUcs4(&character, 1);
        else
            shown += "\\u{" + QString::number(character, 16).toUpper() + '}';
    }
    return shown;
}
