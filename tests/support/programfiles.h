#pragma once

#include <QCoreApplication>
#include <QString>

/// The path of a file in the program's directory.
[[nodiscard]] inline QString besideProgram(const QString& name)
{
    return QCoreApplication::applicationDirPath() + '/' + name;
}
