# Packs what CPack has staged so that the same files always give the same bytes; CPack's own archives keep the order that
# the disk has. The files' time is SOURCE_DATE_EPOCH, in the environment.
if("$ENV{SOURCE_DATE_EPOCH}" STREQUAL "")
  message(FATAL_ERROR "SOURCE_DATE_EPOCH is not set")
endif()
set(archive ${CPACK_PACKAGE_DIRECTORY}/${CPACK_PACKAGE_FILE_NAME}.tar.gz)
get_filename_component(above ${CPACK_TEMPORARY_DIRECTORY} DIRECTORY)
get_filename_component(top ${CPACK_TEMPORARY_DIRECTORY} NAME)
execute_process(
  COMMAND tar --create --directory ${above} --sort=name --format=gnu --mtime=@$ENV{SOURCE_DATE_EPOCH}
    --owner=0 --group=0 --numeric-owner --mode=u=rwX,go=rX ${top}
  COMMAND gzip -9 --no-name
  OUTPUT_FILE ${archive}
  COMMAND_ERROR_IS_FATAL ANY)
set(CPACK_EXTERNAL_BUILT_PACKAGES ${archive})
