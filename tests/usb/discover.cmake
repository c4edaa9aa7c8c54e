# Writes OUTPUT: one ctest test for each row of each of the programs TESTS_<guest>, for each guest. A test is good once
# the run of its guest has left it as passed in GUESTS/<guest>/results.
set(lines "")
foreach(guest libusb hidraw installation)
  set(rows "")
  foreach(test IN LISTS TESTS_${guest})
    execute_process(
      COMMAND ${CMAKE_COMMAND} -E env TALVEX_TEST_FLAVOUR=${guest} ${test} -datatags
      OUTPUT_VARIABLE found COMMAND_ERROR_IS_FATAL ANY)
    string(REGEX MATCHALL "[^\n]+" found "${found}")
    list(APPEND rows ${found})
  endforeach()
  foreach(row IN LISTS rows)
    string(REGEX REPLACE "^([^ ]+) ([^ ]+) ?(.*)$" "\\1::\\2(\\3)" name "${row}")
    string(APPEND lines
      "add_test([==[usb.${guest}.${name}]==] [==[${EXPECT}]==] [==[${GUESTS}/${guest}/results]==]"
      " [==[${name}]==])\n"
      "set_tests_properties([==[usb.${guest}.${name}]==] PROPERTIES LABELS usb FIXTURES_REQUIRED usb-${guest})\n")
  endforeach()
endforeach()
file(WRITE ${OUTPUT} "${lines}")
