#pragma once

#include <QJsonObject>
#include <QPoint>
#include <QStringList>

#include <optional>

/// A message box as a user reads it.
struct BoxText
{
    QString title;
    QString text;
    QString informative;
    QString detailed;      ///< behind "Show Details..."
    QString icon;          ///< "Information", "Critical" or "NoIcon"
    QStringList buttons;   ///< "Ok", "Yes", "No"; the label of a button that is no standard one
    QString defaultButton; ///< "": none was set

    bool operator==(const BoxText&) const = default;
};

/// An information box with one Ok button, titled "Info".
[[nodiscard]] BoxText infoBox(const QString& text);
/// A critical box with one Ok button.
[[nodiscard]] BoxText errorBox(const QString& text, const QString& title = "Error");
/// The box that offers a newer version, with its change log.
[[nodiscard]] BoxText offerBox(const QString& text, const QString& changeLog);

/// Something that can be clicked: a place in the middle of it, in pixels of the screen.
struct Target
{
    unsigned long window = 0; ///< the X window it belongs to
    QPoint windowOrigin;      ///< where the program believes that window to be
    QPoint middle;
};

/// What the program showed at one moment.
class View
{
public:
    View() = default;
    explicit View(QJsonObject told) : all(std::move(told)) {}

    bool operator==(const View&) const = default;
    [[nodiscard]] bool isEmpty() const { return all.isEmpty(); }

    /// The main window's own fields; an empty object while it is not shown.
    [[nodiscard]] QJsonObject window() const;
    /// A widget's fields by object name; an empty object when there is none.
    [[nodiscard]] QJsonObject widget(const QString& name) const;
    [[nodiscard]] QString text(const QString& name) const { return widget(name)["text"].toString(); }
    [[nodiscard]] bool enabled(const QString& name) const { return widget(name)["enabled"].toBool(); }
    [[nodiscard]] int value(const QString& name) const { return widget(name)["value"].toInt(-1); }

    [[nodiscard]] int boxCount() const;
    /// The box that takes the input; nothing: no box is open.
    [[nodiscard]] std::optional<BoxText> box() const;
    /// The X window of that box; 0: no box is open.
    [[nodiscard]] unsigned long boxWindow() const;

    /// Nothing: it is not on the screen.
    [[nodiscard]] std::optional<Target> targetOfWidget(const QString& name) const;
    [[nodiscard]] std::optional<Target> targetOfButton(const QString& name) const;

    /// All of it in a few lines, for the message of a failed test.
    [[nodiscard]] QString describe() const;

private:
    [[nodiscard]] QJsonObject topBox() const;

    QJsonObject all;
};
