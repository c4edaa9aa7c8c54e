#pragma once

#include <QString>

#include <chrono>

namespace limits {

/// What slows a whole run down makes its waits longer by this factor: TALVEX_TEST_PATIENCE in the
/// environment, for Valgrind or an emulated guest; otherwise 1.
[[nodiscard]] inline double patience()
{
    static const double factor = qEnvironmentVariable("TALVEX_TEST_PATIENCE", "1").toDouble();
    return factor;
}

/// How long a test waits for what must come before it says that it never does. A wait ends when that has
/// come, so this is for hangs alone and minutes long: no machine is too slow for it. The build tells it
/// (tests/CMakeLists.txt), as it knows of sanitizers.
[[nodiscard]] inline std::chrono::milliseconds hang()
{
    return std::chrono::milliseconds(static_cast<qint64>(1000 * TALVEX_HANG_LIMIT_S * patience()));
}

/// The same for Qt's functions.
[[nodiscard]] inline int hangMs()
{
    return static_cast<int>(hang().count());
}

/// A time in ms that something is given to happen unseen.
[[nodiscard]] inline int lengthened(int ms)
{
    return static_cast<int>(ms * patience());
}

} // namespace limits
