#include "virtualunit/hidapi/call.h"

#include "virtualunit/numbertext.h"

namespace virtualbus {

std::string lineOf(const Call& call)
{
    using virtualunit::hexText;
    std::string line = call.function;
    if (call.handle != 0)
        line += " handle=" + std::to_string(call.handle);
    if (call.vendor)
        line += " vendor=" + hexText(*call.vendor, 4);
    if (call.product)
        line += " product=" + hexText(*call.product, 4);
    if (!call.path.empty())
        line += " path=" + call.path;
    if (call.length)
        line += " length=" + std::to_string(*call.length);
    if (call.timeout)
        line += " timeout=" + std::to_string(*call.timeout);
    if (!call.bytes.empty())
        line += " bytes=" + hexText(call.bytes);
    if (call.result)
        line += " result=" + std::to_string(*call.result);
    return line;
}

} // namespace virtualbus
