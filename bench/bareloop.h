#pragma once

#include "bench/meter.h"
#include "unit/report.h"

#include <QObject>
#include <QTimer>

#include <hidapi.h>

/// The minimum needed to download a log, on its own thread: a chain of 1 ms single-shot timers and, if set
/// up so, in each of them the reads and writes of one part, the file write and the progress signal.
class BareLoop : public QObject
{
    Q_OBJECT

public:
    hid_device* unit = nullptr; ///< nullptr: only the timers
    int file = -1;              ///< descriptor; -1: nothing is stored
    bool tellsProgress = false;
    int parts = 0;
    Meter* meter = nullptr; ///< counts the single shots if no unit does

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
