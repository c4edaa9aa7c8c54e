#include "tests/harness/probe/connections.h"

#include <QApplication>
#include <QMetaObject>
#include <QWidget>

// No call of the program's can be caught there: only what it shows is known.
namespace connections {

QJsonArray made()
{
    return {};
}

QObject* objectOfClass(const QByteArray& name)
{
    const auto shown = QApplication::topLevelWidgets();
    for (QWidget* widget : shown)
        if (widget->metaObject()->className() == name)
            return widget;
    return nullptr;
}

} // namespace connections
