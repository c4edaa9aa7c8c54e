#pragma once

#include "tests/harness/view.h"

#include <QJsonDocument>
#include <QLocalSocket>
#include <QTcpSocket>

/// The test's end of the connection to the probe inside the program.
class ProbeClient
{
public:
    /// Connects to the probe's socket; false if nothing is listening there (yet). The path may also be a file
    /// that holds the number of a port on loopback.
    [[nodiscard]] bool open(const QString& path);

    /// The answer to one request; a null document if the program does not answer.
    [[nodiscard]] QJsonDocument ask(const QByteArray& request);

    /// The current view; empty if the program does not answer.
    [[nodiscard]] View look() { return View(ask("snapshot").object()); }

private:
    [[nodiscard]] bool openPort(const QString& file);

    QLocalSocket local;
    QTcpSocket tcp;
    QIODevice* socket = &local; ///< the one that is connected
};
