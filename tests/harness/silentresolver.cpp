// Preloaded: looking a host name up never comes to an end, as with a name server that never answers. The file
// that TALVEX_LOOKED_UP names appears when it begins.

#include <netdb.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>

extern "C" int getaddrinfo(const char*, const char*, const addrinfo*, addrinfo**)
{
    if (const char* path = std::getenv("TALVEX_LOOKED_UP")) {
        if (std::FILE* file = std::fopen(path, "w"))
            std::fclose(file);
    }
    for (;;)
        pause();
}
