#pragma once

#include <csignal>

#include <sys/resource.h>

/// While this object lives, no file of this process can grow beyond this many bytes (Linux). As on a full
/// disk, a write is cut short at the limit and the next one fails.
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
