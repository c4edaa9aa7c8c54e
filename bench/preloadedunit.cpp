// Preloaded behind the virtual HID library, this plugs a quick unit in before the program starts.

#include "bench/quickunit.h"

#include <cstdio>

namespace {

[[gnu::constructor]] void plugIn()
{
    auto unit = std::make_shared<QuickUnit>();
    unit->onRequest = [] { std::fputs("transfer requested\n", stderr); };
    unit->onFinalPacket = [] { std::fputs("transfer over\n", stderr); };
    virtualbus::attach(QuickUnit::record(), unit);
}

} // namespace
