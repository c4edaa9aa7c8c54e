#include "patience.h"

namespace {

/// So that a wait that hangs is told by the test itself.
[[maybe_unused]] const bool isWatchdogPatient =
    qEnvironmentVariableIsSet("QTEST_FUNCTION_TIMEOUT") ||
    qputenv("QTEST_FUNCTION_TIMEOUT", QByteArray::number(3 * limits::hangMs()));

} // namespace
