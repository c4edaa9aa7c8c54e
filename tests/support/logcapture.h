#pragma once

#include <QMutex>
#include <QString>
#include <QStringList>

#include <functional>

/// Takes the diagnostics of the whole process while it lives; the handler before it is put back then.
/// One at a time. Lines are kept without the system's error text that qErrnoWarning appends in brackets.
class LogCapture
{
public:
    using Listener = std::function<void(const QString& line)>;

    /// `listener` is told each line as it comes, on the thread that writes it.
    explicit LogCapture(Listener listener = {});
    ~LogCapture();
    Q_DISABLE_COPY_MOVE(LogCapture)

    [[nodiscard]] QStringList lines() const;

private:
    static void take(QtMsgType type, const QMessageLogContext& context, const QString& message);

    Listener listener;
    QtMessageHandler previous = nullptr;
    mutable QMutex lock; // any thread may write a line
    QStringList taken;
};
