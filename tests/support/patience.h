// An include guard, unlike in other headers: "#pragma once" also compares modification times, and a
// precompiled header that comes from ccache has recorded those of another checkout.
#ifndef TALVEX_TESTS_SUPPORT_PATIENCE_H
#define TALVEX_TESTS_SUPPORT_PATIENCE_H

// The build includes this first in every QtTest program, because Qt's own macros wait only 5 s and its
// watchdog kills a row after 5 min (patience.cpp).

#include "tests/support/limits.h"

#include <QtTest>

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

#endif
