#pragma once

#include "tests/support/scriptedunit.h"
#include "tests/virtualunit/host.h"

#include <hidapi.h>

/// hidapi's calls on byte arrays.
namespace hidcalls {

/// Opens the first device on the bus; nullptr if that fails.
inline hid_device* openFirst()
{
    hid_device_info* list = hid_enumerate(0, 0);
    hid_device* device = list == nullptr ? nullptr : hid_open_path(list->path);
    hid_free_enumeration(list);
    return device;
}

/// Plugs in a unit with these options and opens it.
inline hid_device* openUnit(const QString& options)
{
    virtualbus::attach(host::options(options));
    return openFirst();
}

/// A scripted unit, plugged in and open.
struct OpenScript
{
    std::shared_ptr<ScriptedUnit> script = std::make_shared<ScriptedUnit>();
    int number = virtualbus::attach({}, script);
    hid_device* device = openFirst();
};

/// The result of a read: hidapi's return value, and that many bytes.
struct Read
{
    int result = 0;
    host::Bytes bytes;
};

inline Read readTimeout(hid_device* device, int milliseconds)
{
    host::Bytes buffer(64, '\0');
    const int result =
        hid_read_timeout(device, reinterpret_cast<unsigned char*>(buffer.data()), 64, milliseconds);
    return {result, buffer.left(std::max(result, 0))};
}

inline int write(hid_device* device, const host::Bytes& bytes)
{
    return hid_write(device, reinterpret_cast<const unsigned char*>(bytes.constData()),
                     static_cast<std::size_t>(bytes.size()));
}

} // namespace hidcalls
