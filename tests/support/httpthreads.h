#pragma once

#include "tests/support/filecontent.h"

#include <QDir>

/// The number of threads in this process that run Qt's HTTP client (Linux). A thread that has just ended may
/// still be counted briefly.
[[nodiscard]] inline int httpThreads()
{
    int count = 0;
    const QStringList threads = QDir("/proc/self/task").entryList(QDir::Dirs | QDir::NoDotAndDotDot);
    for (const QString& thread : threads)
        if (contentOf("/proc/self/task/" + thread + "/comm").startsWith("QNetworkAccessM"))
            ++count;
    return count;
}
