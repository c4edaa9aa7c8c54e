# Stops the configuration unless TALVEX_CATALOGUE_KEY is empty or a public key as minisign writes it: the base64 of "Ed",
# 8 and 32 bytes, which is 56 characters that begin with RW and one of four letters.
if(NOT "${TALVEX_CATALOGUE_KEY}" STREQUAL "")
  string(LENGTH "${TALVEX_CATALOGUE_KEY}" keyLength)
  if(NOT keyLength EQUAL 56 OR NOT "${TALVEX_CATALOGUE_KEY}" MATCHES "^RW[QRST][A-Za-z0-9+/]+$")
    message(FATAL_ERROR "TALVEX_CATALOGUE_KEY is not a minisign public key of 56 characters: '${TALVEX_CATALOGUE_KEY}'")
  endif()
endif()
