#pragma once

#include "tests/support/texts.h"

#include <QStringList>

/// A message box as a user reads it.
struct BoxText
{
    QString title;
    QString text;
    QString informative;
    QString detailed;      ///< shown by "Show Details..."
    QString icon;          ///< "Information", "Critical" or "NoIcon"
    QStringList buttons;   ///< "Ok", "Yes", "No"; the label of a non-standard button
    QString defaultButton; ///< empty: none was set

    bool operator==(const BoxText&) const = default;

    /// "Critical|Error|text|Ok": the parts that every box has.
    [[nodiscard]] QString line() const { return (QStringList{icon, title, text} + buttons).join('|'); }
};

/// An information box with one Ok button.
[[nodiscard]] inline BoxText infoBox(const QString& text)
{
    return {text::info, text, {}, {}, "Information", {"Ok"}, "Ok"};
}

/// A critical box with one Ok button.
[[nodiscard]] inline BoxText errorBox(const QString& text, const QString& title = text::error)
{
    return {title, text, {}, {}, "Critical", {"Ok"}, "Ok"};
}

/// The box that offers a newer version, with its change log.
[[nodiscard]] inline BoxText offerBox(const QString& text, const QString& changeLog)
{
    QStringList buttons{"Yes", "No"};
    if (!changeLog.isEmpty())
        buttons.prepend("Show Details...");
    return {{}, text, text::offerQuestion, changeLog, "NoIcon", buttons, "Yes"};
}
