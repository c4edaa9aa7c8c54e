#include "tests/harness/processtime.h"

#include "tests/support/filecontent.h"

#include <QDir>

#include <algorithm>

#include <unistd.h>

namespace {

/// The fields of a "stat" file from the state on, which is the third; none: there is no such file.
QList<QByteArray> fieldsOf(const QString& path)
{
    const QByteArray all = contentOf(path);
    return all.mid(all.lastIndexOf(')') + 2).split(' '); // behind the name
}

QFileInfoList threadsOf(qint64 process)
{
    return QDir(QString("/proc/%1/task").arg(process)).entryInfoList(QDir::Dirs | QDir::NoDotAndDotDot);
}

} // namespace

bool isAsleep(qint64 process)
{
    const QFileInfoList threads = threadsOf(process);
    return !threads.isEmpty() && std::all_of(threads.begin(), threads.end(), [](const QFileInfo& thread) {
        return fieldsOf(thread.filePath() + "/stat").value(0) == "S";
    });
}

std::chrono::milliseconds processorTime(qint64 process)
{
    const QList<QByteArray> fields = fieldsOf(QString("/proc/%1/stat").arg(process));
    const long long ticks =
        fields.value(11).toLongLong() + fields.value(12).toLongLong(); // user's and system's
    return std::chrono::milliseconds(ticks * 1000 / sysconf(_SC_CLK_TCK));
}

std::chrono::nanoseconds timeInQueue(qint64 process)
{
    std::chrono::nanoseconds all{0};
    const QFileInfoList threads = threadsOf(process);
    for (const QFileInfo& thread : threads) // running, waiting, how often
        all += std::chrono::nanoseconds(
            contentOf(thread.filePath() + "/schedstat").split(' ').value(1).toLongLong());
    return all;
}
