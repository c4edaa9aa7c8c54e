# Writes OUTPUT: one ctest test for each row of each of the programs TESTS_<flavour>, for each flavour of the HID
# library. A test is good once the guest's run for its flavour has left it as passed in GUESTS/<flavour>/results.
set(lines "")
foreach(flavour libusb hidraw)
  set(rows "")
  foreach(test IN LISTS TESTS_${flavour})
    execute_process(
      COMMAND ${CMAKE_COMMAND} -E env TALVEX_TEST_FLAVOUR=${flavour} ${test} -datatags
      OUTPUT_VARIABLE found COMMAND_ERROR_IS_FATAL ANY)
    string(REGEX MATCHALL "[^\n]+" found "${found}")
    list(APPEND rows ${found})
  endforeach()
  foreach(row IN LISTS rows)
    string(REGEX REPLACE "^([^ ]+) ([^ ]+) ?(.*)$" "\\1::\\2(\\3)" name "${row}")
    string(APPEND lines
      "add_test([==[usb.${flavour}.${name}]==] [==[${EXPECT}]==] [==[${GUESTS}/${flavour}/results]==]"
      " [==[${name}]==])\n"
      "set_tests_properties([==[usb.${flavour}.${name}]==] PROPERTIES LABELS usb FIXTURES_REQUIRED usb-${flavour})\n")
  endforeach()
endforeach()
file(WRITE ${OUTPUT} "${lines}")
