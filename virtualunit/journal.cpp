#include "virtualunit/journal.h"

namespace virtualunit {

Journal::Journal(const std::string& path)
{
    if (!path.empty())
        file.open(path, std::ios::app | std::ios::binary);
}

void Journal::add(const std::string& line)
{
    all.push_back(line);
    if (file.is_open())
        file << (line + '\n') << std::flush; // one write a line: a reader never sees half of one
}

} // namespace virtualunit
