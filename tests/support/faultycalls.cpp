#include "tests/support/faultycalls.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <utility>

#include <dlfcn.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

using faultycalls::Call;

struct Failure
{
    int calls = 0; ///< until it comes; 0: none is planned
    int error = 0;
};

std::array<Failure, 4> failures; // one for each Call
int callsToKill = 0;
std::function<std::string(std::string)> keptOfTheNext;
std::vector<Call> history;

/// Counts the call. True: it is to fail, errno is set.
bool goesWrong(Call call)
{
    if (callsToKill > 0 && --callsToKill == 0)
        raise(SIGKILL);
    history.push_back(call);
    Failure& failure = failures.at(static_cast<std::size_t>(call));
    if (failure.calls == 0 || --failure.calls > 0)
        return false;
    errno = failure.error;
    return true;
}

bool isFile(int descriptor)
{
    struct stat status
    {
    };
    return descriptor > STDERR_FILENO && fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode);
}

template<typename Function> Function original(const char* name)
{
    return reinterpret_cast<Function>(dlsym(RTLD_NEXT, name));
}

} // namespace

namespace faultycalls {

void fail(Call call, int nth, int error)
{
    failures.at(static_cast<std::size_t>(call)) = {nth, error};
}

void spoil(std::function<std::string(std::string)> kept)
{
    keptOfTheNext = std::move(kept);
}

void kill(int nth)
{
    callsToKill = nth;
}

std::vector<Call> calls()
{
    return history;
}

void clear()
{
    history.clear();
    failures = {};
    keptOfTheNext = nullptr;
    callsToKill = 0;
}

} // namespace faultycalls

// What the toolkit and the program call in the C library's stead.
extern "C" {

ssize_t write(int file, const void* bytes, size_t size)
{
    static const auto real = original<decltype(&::write)>("write");
    if (!isFile(file))
        return real(file, bytes, size);
    if (callsToKill == 1)
        real(file, bytes, size / 2);
    if (goesWrong(Call::write))
        return -1;
    if (!keptOfTheNext)
        return real(file, bytes, size);
    const std::string kept = std::exchange(keptOfTheNext, nullptr)({static_cast<const char*>(bytes), size});
    return real(file, kept.data(), kept.size()) < 0 ? -1 : static_cast<ssize_t>(size);
}

int fsync(int file)
{
    static const auto real = original<decltype(&::fsync)>("fsync");
    return goesWrong(Call::fsync) ? -1 : real(file);
}

int unlink(const char* name) noexcept
{
    static const auto real = original<decltype(&::unlink)>("unlink");
    return goesWrong(Call::unlink) ? -1 : real(name);
}

int rename(const char* from, const char* to) noexcept
{
    static const auto real = original<decltype(&::rename)>("rename");
    return goesWrong(Call::rename) ? -1 : real(from, to);
}

int renameat2(int fromFolder, const char* from, int toFolder, const char* to, unsigned flags) noexcept
{
    static const auto real = original<decltype(&::renameat2)>("renameat2");
    return goesWrong(Call::rename) ? -1 : real(fromFolder, from, toFolder, to, flags);
}
}
