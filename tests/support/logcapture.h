#pragma once

#include <QMutex>
#include <QString>
#include <QStringList>

#include <functional>

/// Captures the diagnostics of the whole process while it lives, and restores the previous handler
/// afterwards. Only one may exist at a time. Lines are stored without the system's error text that
/// qErrnoWarning appends in brackets.
class LogCapture
{
public:
    using Listener = std::function<void(const QString& line)>;

    /// `listener` is called with each line as it is written, on the thread that writes it.
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
