#pragma once

#include <QMessageBox>
#include <QMetaEnum>
#include <QPushButton>

/// "Ok", "Yes", ... for a standard button, the label of any other, "" for nullptr.
[[nodiscard]] inline QString nameOf(const QMessageBox& box, QAbstractButton* button)
{
    if (button == nullptr)
        return {};
    const QMessageBox::StandardButton standard = box.standardButton(button);
    if (standard == QMessageBox::NoButton)
        return button->text();
    return QMetaEnum::fromType<QMessageBox::StandardButtons>().valueToKey(standard);
}
