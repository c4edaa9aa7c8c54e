#pragma once

#include "tests/harness/view.h"

#include <QJsonDocument>
#include <QLocalSocket>

/// The test's end of the connection to the probe inside the program.
class ProbeClient
{
public:
    /// Connects to the probe's socket; false if nothing is listening there (yet).
    [[nodiscard]] bool open(const QString& path);

    /// The answer to one request; a null document if the program does not answer.
    [[nodiscard]] QJsonDocument ask(const QByteArray& request);

    /// The current view; empty if the program does not answer.
    [[nodiscard]] View look() { return View(ask("snapshot").object()); }

private:
    QLocalSocket socket;
};
