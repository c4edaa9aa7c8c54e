#include "tests/support/logcapture.h"

#include <QMutexLocker>
#include <QRegularExpression>

#include <utility>

namespace {

LogCapture* current = nullptr; // a message handler is a plain function

QString withoutSystemError(QString line)
{
    static const QRegularExpression systemError(R"( \([^()]*\)$)");
    return line.remove(systemError);
}

} // namespace

LogCapture::LogCapture(Listener told) : listener(std::move(told))
{
    Q_ASSERT(current == nullptr);
    current = this;
    previous = qInstallMessageHandler(take);
}

LogCapture::~LogCapture()
{
    qInstallMessageHandler(previous);
    current = nullptr;
}

QStringList LogCapture::lines() const
{
    const QMutexLocker locker(&lock);
    return taken;
}

void LogCapture::take(QtMsgType /*type*/, const QMessageLogContext& /*context*/, const QString& message)
{
    const QString line = withoutSystemError(message);
    {
        const QMutexLocker locker(&current->lock);
        current->taken.append(line);
    }
    if (current->listener)
        current->listener(line);
}
