#include "childprocess.h"

#include "support/limits.h"

#include <csignal>
#include <sys/prctl.h>

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
}
