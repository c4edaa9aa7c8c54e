# talvex::hidapi: the system's HID library, one flavour per build.
find_package(PkgConfig REQUIRED)
if(CMAKE_SYSTEM_NAME STREQUAL "Linux")
  if(NOT TALVEX_HIDAPI MATCHES "^(libusb|hidraw)$")
    message(FATAL_ERROR "TALVEX_HIDAPI is libusb or hidraw, not '${TALVEX_HIDAPI}'")
  endif()
  set(hidapi_package hidapi-${TALVEX_HIDAPI})
else()
  set(hidapi_package hidapi) # macOS and Windows have one flavour each
endif()
# A reconfigured build must not keep the other flavour's libraries.
pkg_check_modules(HIDAPI_${TALVEX_HIDAPI} REQUIRED IMPORTED_TARGET GLOBAL ${hidapi_package})
add_library(talvex::hidapi ALIAS PkgConfig::HIDAPI_${TALVEX_HIDAPI})
