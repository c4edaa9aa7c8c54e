#pragma once

#include <QByteArray>
#include <QList>

/// Locales in whose languages numbers are written with other digits than 0 to 9. Qt takes them from the
/// environment, also where the system has them not installed.
[[nodiscard]] inline QList<QByteArray> easternLocales()
{
    return {"ar_EG.UTF-8", "fa_IR.UTF-8", "my_MM.UTF-8", "bn_BD.UTF-8", "ne_NP.UTF-8", "mr_IN.UTF-8"};
}
