#include "log/logfilename.h"

#include "base/timestamp.h"

namespace logfilename {

QString at(const QDateTime& start, int attempt)
{
    const QString number = attempt > 1 ? "-" + QString::number(attempt) : QString();
    return timestamp::forFileName(start) + number + "_log.enc";
}

} // namespace logfilename
