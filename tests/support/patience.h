#pragma once

// Included into every QtTest program by the build, in front of all else: Qt's own macros wait for 5 s, and
// its watchdog ends a row after 5 min.

#include "tests/support/limits.h"

#include <QtTest>

/// So that a wait that hangs is told by the test itself.
inline const bool isWatchdogPatient =
    qEnvironmentVariableIsSet("QTEST_FUNCTION_TIMEOUT") ||
    qputenv("QTEST_FUNCTION_TIMEOUT", QByteArray::number(3 * limits::hangMs()));

#undef QTRY_VERIFY
#define QTRY_VERIFY(expression)                                                                              \
    do {                                                                                                     \
        (void)QTest::qWaitFor([&] { return static_cast<bool>(expression); }, limits::hangMs());              \
        QVERIFY(expression);                                                                                 \
    } while (false)

#undef QTRY_COMPARE
#define QTRY_COMPARE(actual, expected)                                                                       \
    do {                                                                                                     \
        (void)QTest::qWaitFor([&] { return (actual) == (expected); }, limits::hangMs());                     \
        QCOMPARE(actual, expected);                                                                          \
    } while (false)
