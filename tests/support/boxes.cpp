#include "tests/support/boxes.h"

#include "tests/support/buttonname.h"

#include <QApplication>
#include <QKeyEvent>
#include <QTimer>

#include <algorithm>
#include <utility>

namespace {

constexpr int lookEveryMs = 1;

SeenBox describe(const QMessageBox& box)
{
    SeenBox seen;
    seen.icon = QMetaEnum::fromType<QMessageBox::Icon>().valueToKey(box.icon());
    seen.title = box.windowTitle();
    seen.text = box.text();
    seen.informative = box.informativeText();
    seen.detailed = box.detailedText();
    const auto buttons = box.buttons();
    for (QAbstractButton* button : buttons)
        seen.buttons += nameOf(box, button);
    seen.defaultButton = nameOf(box, box.defaultButton());
    seen.hasParent = box.parentWidget() != nullptr;
    return seen;
}

void pressDefault(QMessageBox& box)
{
    box.defaultButton()->click();
}

} // namespace

Boxes::Boxes() : answer(pressDefault)
{
    QApplication::instance()->installEventFilter(this);
    QTimer::singleShot(lookEveryMs, this, &Boxes::look);
}

bool Boxes::eventFilter(QObject* object, QEvent* event)
{
    auto* box = event->type() == QEvent::Show ? qobject_cast<QMessageBox*>(object) : nullptr;
    if (box != nullptr && find(box) == nullptr) {
        all.push_back(describe(*box));
        opened.push_back({box});
    }
    return QObject::eventFilter(object, event);
}

void Boxes::answerWith(QMessageBox::StandardButton button)
{
    answer = [button](QMessageBox& box) { box.button(button)->click(); };
}

void Boxes::answerWithEscape()
{
    answer = [](QMessageBox& box) {
        QKeyEvent escape(QEvent::KeyPress, Qt::Key_Escape, Qt::NoModifier);
        QApplication::sendEvent(&box, &escape);
    };
}

void Boxes::leaveOpen()
{
    answer = nullptr;
}

void Boxes::dismissTop()
{
    if (auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget()))
        pressDefault(*box);
}

int Boxes::openCount() const
{
    return static_cast<int>(std::count_if(opened.begin(), opened.end(), [](const Opened& one) {
        return !one.box.isNull() && one.box->isVisible();
    }));
}

QStringList Boxes::lines() const
{
    QStringList lines;
    for (const SeenBox& box : all)
        lines += box.line();
    return lines;
}

Boxes::Opened* Boxes::find(const QMessageBox* box)
{
    const auto found =
        std::find_if(opened.begin(), opened.end(), [box](const Opened& one) { return one.box == box; });
    return found == opened.end() ? nullptr : &*found;
}

void Boxes::look()
{
    // Armed first, and anew each time: whileOpen may run the event loop, in which further boxes may open.
    QTimer::singleShot(lookEveryMs, this, &Boxes::look);
    const QPointer<QMessageBox> top = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
    Opened* const one = top.isNull() ? nullptr : find(top);
    if (one == nullptr || one->isBusy)
        return;
    if (!std::exchange(one->lookedAt, true) && whileOpen) {
        one->isBusy = true;
        whileOpen(*top);
        one->isBusy = false;
    }
    if (answer && !top.isNull() && top == QApplication::activeModalWidget())
        answer(*top);
}
