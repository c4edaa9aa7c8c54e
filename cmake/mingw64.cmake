# The toolchain for 64-bit Windows on Debian (package g++-mingw-w64-x86-64-posix).
# TALVEX_WINDOWS_PREFIX names the folder that holds qt/ and hidapi/ for Windows (scripts/windows.sh qt hidapi).
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)
set(CMAKE_C_COMPILER x86_64-w64-mingw32-gcc-posix) # the flavour that has std::thread
set(CMAKE_CXX_COMPILER x86_64-w64-mingw32-g++-posix)
set(CMAKE_RC_COMPILER x86_64-w64-mingw32-windres)

set(CMAKE_TRY_COMPILE_PLATFORM_VARIABLES TALVEX_WINDOWS_PREFIX)
set(CMAKE_PREFIX_PATH ${TALVEX_WINDOWS_PREFIX}/qt)
set(CMAKE_FIND_ROOT_PATH ${TALVEX_WINDOWS_PREFIX} /usr/x86_64-w64-mingw32)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
foreach(kind LIBRARY INCLUDE PACKAGE)
  set(CMAKE_FIND_ROOT_PATH_MODE_${kind} ONLY)
endforeach()
set(ENV{PKG_CONFIG_LIBDIR} ${TALVEX_WINDOWS_PREFIX}/hidapi/lib/pkgconfig)

# The same sources give the same bytes at any time, and in any folder.
foreach(kind EXE SHARED MODULE)
  set(CMAKE_${kind}_LINKER_FLAGS_INIT -Wl,--no-insert-timestamp)
endforeach()
set_property(GLOBAL PROPERTY RULE_LAUNCH_LINK "${CMAKE_CURRENT_LIST_DIR}/relativelink.sh ${TALVEX_WINDOWS_PREFIX}")
