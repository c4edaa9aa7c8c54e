#pragma once

#include <QDir>
#include <QFile>
#include <QStringList>

/// The process's threads in which Qt's HTTP client runs (Linux). One that has ended may be seen for another
/// moment.
[[nodiscard]] inline int httpThreads()
{
    int count = 0;
    const QStringList threads = QDir("/proc/self/task").entryList(QDir::Dirs | QDir::NoDotAndDotDot);
    for (const QString& thread : threads) {
        QFile name("/proc/self/task/" + thread + "/comm");
        if (name.open(QIODevice::ReadOnly) && name.readAll().startsWith("QNetworkAccessM"))
            ++count;
    }
    return count;
}
