// An include guard, unlike in other headers: "#pragma once" also compares modification times, and a
// precompiled header that comes from ccache has recorded those of another checkout.
#ifndef TALVEX_TESTS_SUPPORT_LIMITS_H
#define TALVEX_TESTS_SUPPORT_LIMITS_H

#include <QString>

#include <chrono>

namespace limits {

/// The factor by which all waits are lengthened when the whole run is slow, as under Valgrind or in an
/// emulated guest: TALVEX_TEST_PATIENCE in the environment; 1 by default.
[[nodiscard]] inline double patience()
{
    static const double factor = qEnvironmentVariable("TALVEX_TEST_PATIENCE", "1").toDouble();
    return factor;
}

/// How long a test waits for an expected event before it fails. A wait ends as soon as the event occurs, so
/// this limit only catches hangs; it is minutes long, so that no machine is too slow for it. The build sets
/// it (tests/CMakeLists.txt), because it depends on sanitizers.
[[nodiscard]] inline std::chrono::milliseconds hang()
{
    return std::chrono::milliseconds(static_cast<qint64>(1000 * TALVEX_HANG_LIMIT_S * patience()));
}

/// hang() as a number of ms, for Qt's functions.
[[nodiscard]] inline int hangMs()
{
    return static_cast<int>(hang().count());
}

/// A time in ms allowed for something that cannot be observed.
[[nodiscard]] inline int lengthened(int ms)
{
    return static_cast<int>(ms * patience());
}

} // namespace limits

#endif
