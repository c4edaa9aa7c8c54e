# The bundle: the program with the libraries that it needs, for systems without them. The program is at the top, because
# it keeps its files beside itself. scripts/package.sh builds and packs what is installed here.
if(CMAKE_VERSION VERSION_LESS 3.21)
  message(FATAL_ERROR "The bundle needs CMake 3.21 or newer")
endif()

# The old kind of search path: it counts for what the libraries and plug-ins need, too. So they can stay as Debian made
# them, byte for byte. Nor does a LD_LIBRARY_PATH put others in their place.
set_target_properties(talvex-updater PROPERTIES INSTALL_RPATH "$ORIGIN/lib" BUILD_WITH_INSTALL_RPATH ON)
target_link_options(talvex-updater PRIVATE LINKER:--disable-new-dtags -s)

# Qt looks for this one itself, when a server redirects to https.
find_library(TALVEX_TLS_LIBRARY libssl.so.3 REQUIRED)
mark_as_advanced(TALVEX_TLS_LIBRARY)
add_library(talvex-tls SHARED IMPORTED)
set_target_properties(talvex-tls PROPERTIES IMPORTED_LOCATION ${TALVEX_TLS_LIBRARY})

install(TARGETS talvex-updater RUNTIME_DEPENDENCY_SET bundle RUNTIME DESTINATION .)
install(IMPORTED_RUNTIME_ARTIFACTS Qt5::QXcbIntegrationPlugin RUNTIME_DEPENDENCY_SET bundle
  LIBRARY DESTINATION plugins/platforms)
install(IMPORTED_RUNTIME_ARTIFACTS talvex-tls RUNTIME_DEPENDENCY_SET bundle LIBRARY DESTINATION lib)
# Everything but glibc, which fits its kernel and its system's settings.
install(RUNTIME_DEPENDENCY_SET bundle
  PRE_EXCLUDE_REGEXES "^ld-linux" "^lib(anl|c|dl|m|mvec|pthread|resolv|rt|util)\\.so"
  LIBRARY DESTINATION lib)

install(CODE "execute_process(
  COMMAND \"${PROJECT_SOURCE_DIR}/packaging/linux/notices.sh\" \"\$ENV{DESTDIR}\${CMAKE_INSTALL_PREFIX}\" COMMAND_ERROR_IS_FATAL ANY)")

install(CODE "execute_process(
  COMMAND bash -c \"source scripts/lib/guide.sh && guideAsHtml docs/user-guide.md\"
  WORKING_DIRECTORY \"${PROJECT_SOURCE_DIR}\"
  OUTPUT_FILE \"\$ENV{DESTDIR}\${CMAKE_INSTALL_PREFIX}/user-guide.html\" COMMAND_ERROR_IS_FATAL ANY)")

set(CPACK_PACKAGE_FILE_NAME ${PROJECT_NAME}-${PROJECT_VERSION}-linux-${CMAKE_SYSTEM_PROCESSOR})
set(CPACK_VERBATIM_VARIABLES ON)
set(CPACK_GENERATOR External)
set(CPACK_EXTERNAL_ENABLE_STAGING ON)
set(CPACK_EXTERNAL_PACKAGE_SCRIPT ${PROJECT_SOURCE_DIR}/cmake/packbundle.cmake)
include(CPack)
