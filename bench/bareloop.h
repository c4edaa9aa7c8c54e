#pragma once

#include "bench/meter.h"
#include "unit/report.h"

#include <QObject>
#include <QTimer>

#include <hidapi.h>

/// The least that pulls a log, on a thread of its own: a chain of 1 ms single shots and, where told, in each
/// of them the reads and writes of one part, the file's write and the progress.
class BareLoop : public QObject
{
    Q_OBJECT

public:
    hid_device* unit = nullptr; ///< nullptr: only the timers
    int file = -1;              ///< descriptor; -1: nothing is stored
    bool tellsProgress = false;
    int parts = 0;
    Meter* meter = nullptr; ///< counts single shots where there is no unit that does

signals:
    void progress(int percent);
    void finished();

public slots:
    void next() { QTimer::singleShot(1, this, &BareLoop::step); }

private:
    void step();
    void exchange();

    int done = 0;
    report::Output acknowledge{0x00, 0x30};
    report::Input reply{};
};
