#pragma once

#include <QByteArray>
#include <QList>
#include <QTest>

/// Locales that write numbers with digits other than 0 to 9. Qt takes them from the environment even if they
/// are not installed on the system.
[[nodiscard]] inline QList<QByteArray> easternLocales()
{
    return {"ar_EG.UTF-8", "fa_IR.UTF-8", "my_MM.UTF-8", "bn_BD.UTF-8", "ne_NP.UTF-8", "mr_IN.UTF-8"};
}

/// Adds a test row for each of them, with the column "locale".
inline void addEasternLocales()
{
    QTest::addColumn<QByteArray>("locale");
    for (const QByteArray& locale : easternLocales())
        QTest::newRow(locale) << locale;
}
