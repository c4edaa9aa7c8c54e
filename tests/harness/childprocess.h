#pragma once

#include <QProcess>

/// A process that ends, at the latest, with the test that started it.
class ChildProcess : public QProcess
{
public:
    using QProcess::QProcess;
    ~ChildProcess() override;

    /// Asks it to end, and after graceMs ms ends it. Returns once it is gone.
    void end(int graceMs = 2000);

protected:
    void setupChildProcess() override;
};
