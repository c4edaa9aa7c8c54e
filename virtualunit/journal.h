#pragma once

#include <fstream>
#include <string>
#include <vector>

namespace virtualunit {

/// What happened to one unit, one line per event, in words that README.md lists. Lines carry no time, so that
/// they can be compared as they are.
class Journal
{
public:
    /// Also appends each line at once to the file at `path`; empty: no file.
    explicit Journal(const std::string& path);

    void add(const std::string& line);

    /// A violation of the wire format by the host: the line begins with "error ".
    void addError(const std::string& what) { add("error " + what); }

    [[nodiscard]] const std::vector<std::string>& lines() const { return all; }

private:
    std::vector<std::string> all;
    std::ofstream file;
};

} // namespace virtualunit
