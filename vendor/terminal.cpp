#include "vendor/terminal.h"

#include "vendor/escaped.h"

#include <csignal>
#include <cstdio>

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

void showProgress(const QString& line)
{
    (void)std::fprintf(stderr, "\r%s\033[K", line.toUtf8().constData());
    (void)std::fflush(stderr);
}

void noteInterrupts()
{
    (void)std::signal(SIGINT, [](int) {
        interrupted = 1;
        (void)std::signal(SIGINT, SIG_DFL); // a second one ends the process
    });
}

bool isInterrupted()
{
    return interrupted != 0;
}

} // namespace terminal
