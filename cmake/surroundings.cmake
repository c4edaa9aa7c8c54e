# What the bundle holds beside the program and its libraries, as a component that tests install alone.
set(linux ${PROJECT_SOURCE_DIR}/packaging/linux)
set(icons ${PROJECT_SOURCE_DIR}/packaging/icon)
file(WRITE ${CMAKE_BINARY_DIR}/version "${PROJECT_VERSION}\n")

set(CMAKE_INSTALL_DEFAULT_COMPONENT_NAME surroundings)
install(FILES ${linux}/qt.conf DESTINATION .)
install(PROGRAMS ${linux}/install-for-this-computer.sh DESTINATION .)
install(PROGRAMS ${PROJECT_SOURCE_DIR}/scripts/support-report.sh DESTINATION scripts)
install(FILES ${PROJECT_SOURCE_DIR}/scripts/lib/unitaccess.sh DESTINATION scripts/lib)
install(FILES ${linux}/70-talvex-updater.rules ${CMAKE_BINARY_DIR}/version DESTINATION share)
install(FILES ${linux}/example.talvex.updater.desktop DESTINATION share)
install(FILES ${linux}/example.talvex.updater.metainfo.xml DESTINATION share/metainfo)
install(FILES ${icons}/talvex-updater.svg DESTINATION share/icons/hicolor/scalable/apps)
foreach(size 16 24 32 48 64 128 256)
  install(FILES ${icons}/talvex-updater-${size}.png DESTINATION share/icons/hicolor/${size}x${size}/apps
    RENAME talvex-updater.png)
endforeach()
unset(CMAKE_INSTALL_DEFAULT_COMPONENT_NAME)
