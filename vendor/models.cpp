#include "vendor/models.h"

#include <algorithm>

namespace models {

namespace {

/// Only its letters and digits, in lower case.
QString plain(const QString& text)
{
    QString kept;
    std::copy_if(text.begin(), text.end(), std::back_inserter(kept),
                 [](QChar character) { return character.isLetterOrNumber(); });
    return kept.toLower();
}

} // namespace

QStringList stems()
{
    QStringList all;
    for (const UnitModel& model : unitModels)
        all.append(model.catalogueStem);
    all.removeDuplicates();
    return all;
}

QString nameOf(const UnitModel& model)
{
    QString name(model.connectedMessage);
    name.remove(" connected");
    return name.replace('_', ' ');
}

std::optional<QString> stemWritten(const QString& text)
{
    const QString stem = text.toUpper();
    return stems().contains(stem) ? std::optional(stem) : std::nullopt;
}

std::optional<QString> stemMeant(const QString& text)
{
    if (auto stem = stemWritten(text))
        return stem;
    for (const UnitModel& model : unitModels) {
        const QStringList siblings = nameOf(model).split('/');
        if (std::any_of(siblings.begin(), siblings.end(),
                        [&](const QString& name) { return plain(name) == plain(text); }))
            return QString(model.catalogueStem);
    }
    return std::nullopt;
}

} // namespace models
