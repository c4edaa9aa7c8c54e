#include "vendor/escaped.h"

#include <QVector>

namespace {

/// Qt counts the separators of lines and paragraphs as printable, too; they would break the line.
bool isShown(uint character)
{
    const QChar::Category category = QChar::category(character);
    return QChar::isPrint(character) && category != QChar::Separator_Line &&
           category != QChar::Separator_Paragraph;
}

} // namespace

QString escaped(const QString& text)
{
    QString shown;
    for (const uint character : text.toUcs4()) {
        if (character == '\\')
            shown += "\\\\";
        else if (isShown(character))
            shown += QString::fromUcs4(&character, 1);
        else
            shown += "\\u{" + QString::number(character, 16).toUpper() + '}';
    }
    return shown;
}
