# talvex_windows_resources(<target>): the program's icon, version and manifest.
enable_language(RC)
function(talvex_windows_resources target)
  set(folder ${PROJECT_SOURCE_DIR}/packaging)
  set(TALVEX_MANIFEST ${folder}/windows/talvex-updater.manifest)
  set(TALVEX_ICON ${folder}/icon/talvex-updater.ico)
  configure_file(${folder}/windows/talvex-updater.rc.in talvex-updater.rc @ONLY)
  target_sources(${target} PRIVATE ${CMAKE_CURRENT_BINARY_DIR}/talvex-updater.rc)
  set_source_files_properties(${CMAKE_CURRENT_BINARY_DIR}/talvex-updater.rc PROPERTIES
    OBJECT_DEPENDS "${TALVEX_MANIFEST};${TALVEX_ICON}")
endfunction()
