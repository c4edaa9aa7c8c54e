#pragma once

#include "tests/harness/view.h"

#include <QJsonDocument>
#include <QLocalSocket>

/// The driver's end of the line to the probe inside the program.
class ProbeClient
{
public:
    /// Connects to the probe's socket; false: nobody listens there (yet).
    [[nodiscard]] bool open(const QString& path);

    /// The answer to one request, or a null document when the program does not answer.
    [[nodiscard]] QJsonDocument ask(const QByteArray& request);

    /// An empty view: no answer.
    [[nodiscard]] View look() { return View(ask("snapshot").object()); }

private:
    QLocalSocket socket;
};
