#pragma once

#include <QProcess>

/// A process that ends, at the latest, with the test that started it.
class ChildProcess : public QProcess
{
public:
    using QProcess::QProcess;
    ~ChildProcess() override;

    /// Before the start: it runs in this terminal, in a session of its own and in the foreground, as the
    /// command of a terminal window does. Nothing of its output is to be had then.
    void setTerminal(int descriptor) { terminal = descriptor; }

    /// Asks it to end, and ends it if it does not. Returns once it is gone.
    void end();

protected:
    void setupChildProcess() override;

private:
    int terminal = -1; ///< none
};
