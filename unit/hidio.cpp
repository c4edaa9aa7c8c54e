#include "unit/hidio.h"

namespace hidio {

int write(hid_device* device, const unsigned char* report)
{
    return device != nullptr ? hid_write(device, report, report::outputLength) : failed;
}

int read(hid_device* device, unsigned char* report, int milliseconds)
{
    return device != nullptr ? hid_read_timeout(device, report, report::payloadLength, milliseconds) : failed;
}

int readBlocking(hid_device* device, unsigned char* report)
{
    return device != nullptr ? hid_read(device, report, report::payloadLength) : failed;
}

} // namespace hidio
