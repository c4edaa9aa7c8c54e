#include "tests/reliability/computer.h"

#include "tests/support/readonlyfolder.h"

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>

#include <atomic>
#include <csignal>
#include <ctime>

#include <sys/resource.h>
#include <sys/syscall.h>
#include <sys/time.h>
#include <unistd.h>

namespace {

std::atomic<long> clockOffset = 0; // s

} // namespace

// In front of the C library's, for the program and Qt.
extern "C" {

int clock_gettime(clockid_t id, timespec* time) noexcept
{
    const long result = syscall(SYS_clock_gettime, id, time);
    if (result == 0 && (id == CLOCK_REALTIME || id == CLOCK_REALTIME_COARSE))
        time->tv_sec += clockOffset;
    return static_cast<int>(result);
}

int gettimeofday(timeval* time, void* /*zone*/) noexcept
{
    timespec now{};
    const int result = clock_gettime(CLOCK_REALTIME, &now);
    *time = {now.tv_sec, now.tv_nsec / 1000};
    return result;
}

time_t time(time_t* result) noexcept
{
    timespec now{};
    clock_gettime(CLOCK_REALTIME, &now);
    if (result != nullptr)
        *result = now.tv_sec;
    return now.tv_sec;
}
}

void computer::setClock(long seconds)
{
    clockOffset = seconds;
}

void computer::suspend(int ms)
{
    const pid_t sleeper = getpid();
    if (fork() == 0) {
        const timespec nap{ms / 1000, ms % 1000 * 1000000L};
        nanosleep(&nap, nullptr);
        ::kill(sleeper, SIGCONT);
        _exit(0);
    }
    raise(SIGSTOP);
}

void computer::kill()
{
    raise(SIGKILL);
}

void computer::endSession()
{
    raise(SIGTERM);
}

void computer::fillDisk(unsigned long bytes)
{
    std::signal(SIGXFSZ, SIG_IGN);
    rlimit limit{};
    getrlimit(RLIMIT_FSIZE, &limit);
    limit.rlim_cur = bytes;
    setrlimit(RLIMIT_FSIZE, &limit);
}

void computer::makeDirectoryReadOnly()
{
    const QByteArray program = QFile::encodeName(QFileInfo("/proc/self/exe").symLinkTarget());
    static const ReadOnlyFolder fromNowOn(program.left(program.lastIndexOf('/')));
}
