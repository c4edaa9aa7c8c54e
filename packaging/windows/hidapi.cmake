# Included into the build of hidapi: its library for Windows is called hidapi.dll everywhere.
set(CMAKE_SHARED_LIBRARY_PREFIX "")
