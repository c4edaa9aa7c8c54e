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

    /// All of it, for a failed test's message.
    [[nodiscard]] QString describe() const
    {
        return QString(R"([%1] "%2" "%3" "%4" details "%5" buttons %6 default "%7")")
            .arg(icon, title, text, informative, detailed, buttons.join('|'), defaultButton);
    }
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

/// What an offer says; versions as shown ("2.3" for a unit's, "0.12" for an updater's).
/// @{
[[nodiscard]] inline QString firmwareOffer(const QString& current, const QString& latest)
{
    return "Your unit current version: " + current + "\nLatest version: " + latest;
}
[[nodiscard]] inline QString updaterOffer(const QString& latest = QString("0.") + updater::next)
{
    return QString("Your Talvex updater version: 0.%1\nLatest version: %2").arg(updater::own, latest);
}
/// @}

/// The box that offers a newer version, with its change log.
[[nodiscard]] inline BoxText offerBox(const QString& text, const QString& changeLog)
{
    QStringList buttons{"Yes", "No"};
    if (!changeLog.isEmpty())
        buttons.prepend("Show Details...");
    return {{}, text, text::offerQuestion, changeLog, "NoIcon", buttons, "Yes"};
}
