#include "tests/harness/terminal.h"

#include <cstdlib>

#include <fcntl.h>
#include <unistd.h>

Terminal::Terminal() : own(::posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC))
{
    if (own >= 0 && ::grantpt(own) == 0 && ::unlockpt(own) == 0)
        other = ::open(::ptsname(own), O_RDWR | O_NOCTTY | O_CLOEXEC);
}

Terminal::~Terminal()
{
    close();
    if (other >= 0)
        ::close(other);
}

void Terminal::close()
{
    if (own >= 0)
        ::close(own);
    own = -1;
}
