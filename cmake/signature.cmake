# talvex-signature, where something checks signatures; nothing else is linked to libsodium. Debian has none for Windows,
# so the tests there do without.
if(NOT "${TALVEX_CATALOGUE_KEY}" STREQUAL "" OR (TALVEX_TESTS AND UNIX) OR TALVEX_FUZZ OR TALVEX_VENDOR_TOOL)
  pkg_check_modules(SODIUM REQUIRED IMPORTED_TARGET GLOBAL libsodium)
  add_library(talvex-signature STATIC net/signature.cpp)
  target_include_directories(talvex-signature PUBLIC ${PROJECT_SOURCE_DIR})
  target_link_libraries(talvex-signature PUBLIC Qt5::Core PRIVATE PkgConfig::SODIUM talvex::warnings)
endif()
