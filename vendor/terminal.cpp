#include "vendor/terminal.h"

#include "vendor/escaped.h"

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <system_error>

#ifdef Q_OS_WIN
#include <io.h>
#else
#include <unistd.h>
#endif

namespace terminal {

namespace {

volatile std::sig_atomic_t interrupted = 0;

bool isTerminal(FILE* stream)
{
#ifdef Q_OS_WIN
    return _isatty(_fileno(stream)) != 0;
#else
    return isatty(fileno(stream)) != 0;
#endif
}

void note(int /*signal*/)
{
    interrupted = 1;
    (void)std::signal(SIGINT, SIG_DFL); // a second one ends the process
}

} // namespace

bool isOutput()
{
    return isTerminal(stdout);
}

bool isErrors()
{
    return isTerminal(stderr);
}

void complain(const QString& line)
{
    (void)std::fputs(("talvex-catalogue: " + escaped(line) + '\n').toUtf8().constData(), stderr);
}

bool print(const QByteArray& bytes)
{
    const auto size = static_cast<std::size_t>(bytes.size());
    if (std::fwrite(bytes.constData(), 1, size, stdout) == size && std::fflush(stdout) == 0)
        return true;
    complain("standard output: " + QString::fromStdString(std::generic_category().message(errno)));
    return false;
}

void showProgress(const QString& line)
{
    (void)std::fprintf(stderr, "\r%s\033[K", line.toUtf8().constData());
    (void)std::fflush(stderr);
}

void noteInterrupts()
{
    if (std::signal(SIGINT, SIG_IGN) != SIG_IGN) // else whoever started it wants it ignored
        (void)std::signal(SIGINT, note);
}

bool isInterrupted()
{
    return interrupted != 0;
}

} // namespace terminal
