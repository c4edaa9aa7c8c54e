#include "childprocess.h"

#include <csignal>
#include <sys/prctl.h>

ChildProcess::~ChildProcess()
{
    end();
}

void ChildProcess::end(int graceMs)
{
    if (state() == NotRunning)
        return;
    terminate();
    if (waitForFinished(graceMs))
        return;
    kill();
    waitForFinished(graceMs);
}

void ChildProcess::setupChildProcess()
{
    prctl(PR_SET_PDEATHSIG, SIGTERM);
}
