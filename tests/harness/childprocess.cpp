#include "tests/harness/childprocess.h"

#include "tests/support/limits.h"

#include <csignal>
#include <cstdlib>
#include <sys/ioctl.h>
#include <sys/prctl.h>
#include <unistd.h>

ChildProcess::~ChildProcess()
{
    end();
}

void ChildProcess::end()
{
    if (state() == NotRunning)
        return;
    terminate();
    if (waitForFinished(limits::hangMs()))
        return;
    kill();
    waitForFinished(limits::hangMs());
}

void ChildProcess::setupChildProcess()
{
    prctl(PR_SET_PDEATHSIG, SIGTERM);
    if (terminal < 0)
        return;
    if (setsid() < 0 || ioctl(terminal, TIOCSCTTY, 0) != 0)
        _exit(EXIT_FAILURE);
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
        dup2(terminal, stream);
}
