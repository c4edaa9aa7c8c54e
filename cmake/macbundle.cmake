# talvex_mac_bundle(<target>): makes it a bundle that Finder starts. Not yet tried on a Mac (docs/macos.md).
function(talvex_mac_bundle target)
  set(icon ${PROJECT_SOURCE_DIR}/packaging/icon/talvex-updater.icns)
  target_sources(${target} PRIVATE ${icon})
  set_source_files_properties(${icon} PROPERTIES MACOSX_PACKAGE_LOCATION Resources)
  set_target_properties(${target} PROPERTIES
    MACOSX_BUNDLE ON
    MACOSX_BUNDLE_INFO_PLIST ${PROJECT_SOURCE_DIR}/packaging/macos/Info.plist.in
    MACOSX_BUNDLE_BUNDLE_NAME "Talvex updater"
    MACOSX_BUNDLE_BUNDLE_VERSION ${PROJECT_VERSION}
    MACOSX_BUNDLE_GUI_IDENTIFIER example.talvex.updater
    MACOSX_BUNDLE_ICON_FILE talvex-updater.icns
    MACOSX_BUNDLE_SHORT_VERSION_STRING ${PROJECT_VERSION})
endfunction()
