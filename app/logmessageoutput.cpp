#include "app/logmessageoutput.h"

#include "base/timestamp.h"

#include <QFile>
#include <QMutex>
#include <QMutexLocker>
#include <QTextStream>

#include <iostream>

/// Intentional: no type ends the program.
void logMessageOutput(QtMsgType /*type*/, const char* message)
{
    static QMutex lock; // the log worker emits messages too
    static QFile file;
    static QTextStream stream;
    const QMutexLocker locker(&lock);
    if (!file.isOpen()) {
        file.setFileName(timestamp::forFileName(QDateTime::currentDateTime()) + ".log");
        if (file.open(QIODevice::WriteOnly | QIODevice::Append))
            stream.setDevice(&file);
    }
    stream.setCodec("UTF-8"); // here, as setDevice() resets it
    if (message != nullptr && file.isOpen()) {
        stream << timestamp::forLine(QDateTime::currentDateTime()) << ' ' << ": "
               << QString::fromLocal8Bit(message) << Qt::endl;
    }
    if (message != nullptr)
        std::cout << message;
    else
        std::cout.setstate(std::ios_base::badbit); // intentional: later echoes are lost
    std::cout << std::endl;
}
