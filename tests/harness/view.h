#pragma once

#include "tests/support/boxtext.h"

#include <QJsonObject>
#include <QPoint>
#include <QSize>
#include <QStringList>

#include <optional>

/// Something that can be clicked, and its middle in screen pixels.
struct Target
{
    unsigned long window = 0; ///< the X window it belongs to
    QPoint windowOrigin;      ///< where the program believes that window is
    QSize windowSize;         ///< likewise, in screen pixels
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
    /// A widget's fields, by object name; an empty object if there is none.
    [[nodiscard]] QJsonObject widget(const QString& name) const;
    [[nodiscard]] QString text(const QString& name) const { return widget(name)["text"].toString(); }
    [[nodiscard]] bool enabled(const QString& name) const { return widget(name)["enabled"].toBool(); }
    [[nodiscard]] int value(const QString& name) const { return widget(name)["value"].toInt(-1); }

    [[nodiscard]] int boxCount() const;
    [[nodiscard]] bool hasBox() const { return boxCount() > 0; }
    /// The box that receives input; nullopt if no box is open.
    [[nodiscard]] std::optional<BoxText> box() const;
    /// The X window of the main window; 0 if it is not shown.
    [[nodiscard]] unsigned long mainWindow() const;
    /// The X window of that box; 0 if no box is open.
    [[nodiscard]] unsigned long boxWindow() const;

    /// Nullopt if it is not on the screen.
    [[nodiscard]] std::optional<Target> targetOfWidget(const QString& name) const;
    [[nodiscard]] std::optional<Target> targetOfButton(const QString& name) const;

    /// A summary in a few lines, for a failed test's message.
    [[nodiscard]] QString describe() const;

private:
    [[nodiscard]] QJsonObject topBox() const;

    QJsonObject all;
};
