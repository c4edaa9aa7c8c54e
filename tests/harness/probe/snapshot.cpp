#include "tests/harness/probe/snapshot.h"

#include "tests/support/buttonname.h"

#include <QAbstractButton>
#include <QApplication>
#include <QJsonArray>
#include <QMainWindow>
#include <QMessageBox>
#include <QMetaEnum>
#include <QProgressBar>
#include <QPushButton>
#include <QVariant>
#include <QWindow>

#ifdef Q_OS_WIN
#include <windows.h>
#endif

namespace {

#ifdef Q_OS_WIN
/// The X window that Wine shows this one in.
WId idOnScreen(const QWindow& window)
{
    const HANDLE id = GetPropA(reinterpret_cast<HWND>(window.winId()), "__wine_x11_whole_window");
    return reinterpret_cast<WId>(id);
}

/// There, Qt counts in points of its own; the screen's first pixel is that of both.
QPoint onScreen(const QWidget& widget, QPoint position)
{
    return position * widget.devicePixelRatioF();
}
#else
WId idOnScreen(const QWindow& window)
{
    return window.winId();
}

QPoint onScreen(const QWidget&, QPoint position)
{
    return position;
}
#endif

/// Global position in pixels of the screen, and size; winId and exposed only of a window that has them
/// already.
QJsonObject place(const QWidget& widget)
{
    const QPoint global = onScreen(widget, widget.mapToGlobal(QPoint(0, 0)));
    const QPoint middle = onScreen(widget, widget.mapToGlobal(widget.rect().center()));
    QJsonObject fields{
        {"globalX", global.x()}, {"globalY", global.y()},   {"middleX", middle.x()},
        {"middleY", middle.y()}, {"width", widget.width()}, {"height", widget.height()},
    };
    if (widget.isWindow() && widget.windowHandle() != nullptr) {
        fields["winId"] = QString::number(idOnScreen(*widget.windowHandle()));
        const QPoint size = onScreen(widget, {widget.width(), widget.height()});
        fields["pixelWidth"] = size.x();
        fields["pixelHeight"] = size.y();
        fields["exposed"] = widget.windowHandle()->isExposed();
        fields["active"] = widget.isActiveWindow();
        fields["title"] = widget.windowTitle();
    }
    return fields;
}

QJsonObject describe(const QWidget& widget)
{
    QJsonObject fields = place(widget);
    fields["name"] = widget.objectName();
    fields["class"] = QString::fromLatin1(widget.metaObject()->className());
    fields["parent"] = widget.parentWidget() == nullptr ? QString() : widget.parentWidget()->objectName();
    fields["x"] = widget.x();
    fields["y"] = widget.y();
    fields["enabled"] = widget.isEnabled();
    fields["visible"] = widget.isVisible();
    fields["whatsThis"] = widget.whatsThis();
    const QVariant text = widget.property("text");
    if (text.isValid())
        fields["text"] = text.toString();
    if (const auto* bar = qobject_cast<const QProgressBar*>(&widget))
        fields["value"] = bar->value();
    return fields;
}

QJsonObject describe(const QMessageBox& box)
{
    QJsonArray buttons;
    const auto own = box.buttons();
    for (QAbstractButton* button : own) {
        QJsonObject one = place(*button);
        one["name"] = nameOf(box, button);
        buttons.append(one);
    }
    QJsonObject fields = place(box);
    fields["text"] = box.text();
    fields["informative"] = box.informativeText();
    fields["detailed"] = box.detailedText();
    fields["icon"] = QMetaEnum::fromType<QMessageBox::Icon>().valueToKey(box.icon());
    fields["buttons"] = buttons;
    fields["modal"] = QApplication::activeModalWidget() == &box;
    fields["defaultButton"] = nameOf(box, box.defaultButton());
    return fields;
}

QJsonObject describe(const QMainWindow& window)
{
    QJsonArray widgets;
    const auto found = window.findChildren<QWidget*>();
    for (const QWidget* widget : found) {
        if (!widget->objectName().isEmpty() && !widget->window()->inherits("QMessageBox"))
            widgets.append(describe(*widget));
    }
    QJsonObject fields = describe(static_cast<const QWidget&>(window));
    fields["widgets"] = widgets;
    return fields;
}

} // namespace

namespace snapshot {

QJsonObject take()
{
    QJsonArray windows;
    QJsonArray boxes;
    const auto all = QApplication::topLevelWidgets();
    for (const QWidget* widget : all) {
        if (!widget->isVisible() || widget->windowHandle() == nullptr)
            continue;
        if (const auto* box = qobject_cast<const QMessageBox*>(widget))
            boxes.append(describe(*box));
        else if (const auto* window = qobject_cast<const QMainWindow*>(widget))
            windows.append(describe(*window));
    }
    return {{"windows", windows}, {"boxes", boxes}};
}

} // namespace snapshot
