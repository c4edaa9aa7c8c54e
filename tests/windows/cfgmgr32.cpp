// What the HID library wants of Windows' cfgmgr32.dll and Wine 8 does not have: the list of all HID devices.
// Lies beside the program, which loads it instead of Wine's.

#define CMAPI // these are the functions themselves

#include <windows.h>

#include <cfgmgr32.h>
#include <setupapi.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <string>

namespace {

/// The paths of the devices of this class that are there, each with a zero behind it, and one more at the
/// end.
std::wstring pathsOf(const GUID& deviceClass)
{
    constexpr DWORD mostBytes = 2048; // of one path
    std::wstring paths;
    const HDEVINFO all =
        SetupDiGetClassDevsW(&deviceClass, nullptr, nullptr, DIGCF_PRESENT | DIGCF_DEVICEINTERFACE);
    SP_DEVICE_INTERFACE_DATA one{};
    one.cbSize = sizeof one;
    for (DWORD i = 0; SetupDiEnumDeviceInterfaces(all, nullptr, &deviceClass, i, &one) != FALSE; ++i) {
        alignas(SP_DEVICE_INTERFACE_DETAIL_DATA_W) std::array<std::byte, mostBytes> buffer{};
        auto* const detail = reinterpret_cast<SP_DEVICE_INTERFACE_DETAIL_DATA_W*>(buffer.data());
        detail->cbSize = sizeof *detail;
        if (SetupDiGetDeviceInterfaceDetailW(all, &one, detail, mostBytes, nullptr, nullptr) != FALSE)
            (paths += detail->DevicePath) += L'\0';
    }
    SetupDiDestroyDeviceInfoList(all);
    return paths += L'\0';
}

} // namespace

extern "C" {

CONFIGRET WINAPI CM_Get_Device_Interface_List_SizeW(PULONG length, LPGUID deviceClass, DEVINSTID_W, ULONG)
{
    *length = static_cast<ULONG>(pathsOf(*deviceClass).size());
    return CR_SUCCESS;
}

CONFIGRET WINAPI CM_Get_Device_Interface_ListW(LPGUID deviceClass, DEVINSTID_W, PWCHAR buffer, ULONG length,
                                               ULONG)
{
    const std::wstring paths = pathsOf(*deviceClass);
    if (paths.size() > length)
        return CR_BUFFER_SMALL;
    std::copy(paths.begin(), paths.end(), buffer);
    return CR_SUCCESS;
}

// Nothing is known of where a device is plugged in; the library goes without.
CONFIGRET WINAPI CM_Get_Device_Interface_PropertyW(LPCWSTR, const DEVPROPKEY*, DEVPROPTYPE*, PBYTE, PULONG,
                                                   ULONG)
{
    return CR_FAILURE;
}

CONFIGRET WINAPI CM_Get_DevNode_PropertyW(DEVINST, const DEVPROPKEY*, DEVPROPTYPE*, PBYTE, PULONG, ULONG)
{
    return CR_FAILURE;
}

CONFIGRET WINAPI CM_Locate_DevNodeW(PDEVINST, DEVINSTID_W, ULONG)
{
    return CR_FAILURE;
}

CONFIGRET WINAPI CM_Get_Parent(PDEVINST, DEVINST, ULONG)
{
    return CR_FAILURE;
}

} // extern "C"
