#include "tests/harness/processtime.h"

#include <QDir>

#include <algorithm>

#include <unistd.h>

namespace {

/// The fields of a "stat" file from the state on, which is the third; none: there is no such file.
QList<QByteArray> fieldsOf(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    const QByteArray all = file.readAll();
    return all.mid(all.lastIndexOf(')') + 2).split(' '); // behind the name
}

} // namespace

bool isAsleep(qint64 process)
{
    const QDir threads(QString("/proc/%1/task").arg(process));
    const QStringList all = threads.entryList(QDir::Dirs | QDir::NoDotAndDotDot);
    return !all.isEmpty() && std::all_of(all.begin(), all.end(), [&](const QString& thread) {
        return fieldsOf(threads.filePath(thread + "/stat")).value(0) == "S";
    });
}

std::chrono::milliseconds processorTime(qint64 process)
{
    const QList<QByteArray> fields = fieldsOf(QString("/proc/%1/stat").arg(process));
    const long long ticks =
        fields.value(11).toLongLong() + fields.value(12).toLongLong(); // user's and system's
    return std::chrono::milliseconds(ticks * 1000 / sysconf(_SC_CLK_TCK));
}
