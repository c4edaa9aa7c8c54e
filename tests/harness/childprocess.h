#pragma once

#include <QProcess>

/// A process that ends no later than the test that started it.
class ChildProcess : public QProcess
{
public:
    using QProcess::QProcess;
    ~ChildProcess() override;

    /// Runs the process in this terminal, in its own session and in the foreground, as a terminal window
    /// runs its command. Its output cannot be read then. Call before the start.
    void setTerminal(int descriptor) { terminal = descriptor; }

    /// Asks the process to end, and kills it if it does not. Returns once it is gone.
    void end();

protected:
    void setupChildProcess() override;

private:
    int terminal = -1; ///< none
};
