#pragma once

#include <csignal>

#include <sys/resource.h>

/// While it lives, no file of this process grows beyond this many bytes (Linux): a write stops short there,
/// as on a full disk, the next one fails.
class FileSizeLimit
{
public:
    explicit FileSizeLimit(rlim_t bytes) : handler(std::signal(SIGXFSZ, SIG_IGN))
    {
        getrlimit(RLIMIT_FSIZE, &before);
        const rlimit tight{bytes, before.rlim_max};
        setrlimit(RLIMIT_FSIZE, &tight);
    }

    ~FileSizeLimit()
    {
        setrlimit(RLIMIT_FSIZE, &before);
        std::signal(SIGXFSZ, handler);
    }

    FileSizeLimit(const FileSizeLimit&) = delete;
    FileSizeLimit& operator=(const FileSizeLimit&) = delete;

private:
    void (*handler)(int);
    rlimit before{};
};
