#pragma once

#include <QProcess>

/// A process that ends, at the latest, with the test that started it.
class ChildProcess : public QProcess
{
public:
    using QProcess::QProcess;
    ~ChildProcess() override;

    /// Asks it to end, and ends it if it does not. Returns once it is gone.
    void end();

protected:
    void setupChildProcess() override;
};
