#include "tests/harness/view.h"

#include <QJsonArray>

namespace {

BoxText boxTextOf(const QJsonObject& box)
{
    BoxText told{box["title"].toString(),        box["text"].toString(), box["informative"].toString(),
                 box["detailed"].toString(),     box["icon"].toString(), {},
                 box["defaultButton"].toString()};
    const QJsonArray buttons = box["buttons"].toArray();
    for (const QJsonValue& button : buttons)
        told.buttons += button.toObject()["name"].toString();
    return told;
}

QJsonObject named(const QJsonArray& candidates, const QString& name)
{
    for (const QJsonValue& candidate : candidates) {
        if (candidate.toObject()["name"].toString() == name)
            return candidate.toObject();
    }
    return {};
}

QPoint globalOf(const QJsonObject& thing)
{
    return {thing["globalX"].toInt(), thing["globalY"].toInt()};
}

unsigned long windowIdOf(const QJsonObject& thing)
{
    return thing["winId"].toString().toULong();
}

std::optional<Target> targetIn(const QJsonObject& window, const QJsonObject& thing)
{
    if (window.isEmpty() || thing.isEmpty() || !window["exposed"].toBool())
        return std::nullopt;
    return Target{windowIdOf(window), globalOf(window),
                  QSize(window["pixelWidth"].toInt(), window["pixelHeight"].toInt()),
                  QPoint(thing["middleX"].toInt(), thing["middleY"].toInt())};
}

} // namespace

QJsonObject View::window() const
{
    return all["windows"].toArray().at(0).toObject();
}

QJsonObject View::widget(const QString& name) const
{
    return named(window()["widgets"].toArray(), name);
}

int View::boxCount() const
{
    return all["boxes"].toArray().size();
}

QJsonObject View::topBox() const
{
    const QJsonArray boxes = all["boxes"].toArray();
    for (const QJsonValue& box : boxes) {
        if (box.toObject()["modal"].toBool())
            return box.toObject();
    }
    return {};
}

std::optional<BoxText> View::box() const
{
    const QJsonObject top = topBox();
    return top.isEmpty() ? std::nullopt : std::optional(boxTextOf(top));
}

unsigned long View::mainWindow() const
{
    return windowIdOf(window());
}

unsigned long View::boxWindow() const
{
    return windowIdOf(topBox());
}

std::optional<Target> View::targetOfWidget(const QString& name) const
{
    const QJsonObject thing = widget(name);
    return thing["visible"].toBool() ? targetIn(window(), thing) : std::nullopt;
}

std::optional<Target> View::targetOfButton(const QString& name) const
{
    const QJsonObject top = topBox();
    return targetIn(top, named(top["buttons"].toArray(), name));
}

QString View::describe() const
{
    QString lines = "window \"" + window()["title"].toString() + "\"\n";
    const QJsonArray widgets = window()["widgets"].toArray();
    for (const QJsonValue& value : widgets) {
        const QJsonObject widget = value.toObject();
        if (!widget["visible"].toBool() || !(widget.contains("text") || widget.contains("value")))
            continue;
        lines +=
            QString("  %1: \"%2\"%3%4\n")
                .arg(widget["name"].toString(), widget["text"].toString(),
                     widget.contains("value") ? " at " + QString::number(widget["value"].toInt()) : QString(),
                     widget["enabled"].toBool() ? QString() : QString(" (disabled)"));
    }
    const QJsonArray boxes = all["boxes"].toArray();
    for (const QJsonValue& box : boxes)
        lines += "  box " + boxTextOf(box.toObject()).describe() + '\n';
    return lines;
}
