#include "app/exitsignals.h"

namespace exitsignals {

void listen(void (*)()) {}

void quitOnSignal(QCoreApplication&) {}

} // namespace exitsignals
