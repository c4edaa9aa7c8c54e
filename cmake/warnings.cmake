# talvex::warnings: the warning options of every target.
option(TALVEX_WERROR "Treat warnings as errors" OFF)
add_library(talvex-warnings INTERFACE)
add_library(talvex::warnings ALIAS talvex-warnings)
if(MSVC)
  target_compile_options(talvex-warnings INTERFACE /W4 $<$<BOOL:${TALVEX_WERROR}>:/WX>)
else()
  target_compile_options(talvex-warnings INTERFACE
    -Wall -Wextra -Wpedantic -Wconversion -Wshadow $<$<BOOL:${TALVEX_WERROR}>:-Werror>)
endif()
