# shellcheck shell=bash
# The program for Windows with the real HID library, on the USB bus of a guest. Sourced, not run, from the project's
# folder.
# shellcheck disable=SC2154  # the folders are those of scripts/lib/windows.sh

# For what hangs, in s: the guest, and a wait on a processor that is not emulated.
guestLimit=3600
waitLimit=120

# The program from the zip, unchanged, with a probe and what Wine lacks beside it.
step_bus() {
    local unpacked driver guest=tests/usb/guest out result=0
    driver=$(driverFolder)
    out=$driver/tests/usb/guests/windows
    installMissing "${guestPackages[@]}" || return
    cmake --preset windows-tests > /dev/null && cmake --build --preset windows-tests -j "$jobs" --target usb-windows-tests &&
        buildDriver usb-windows-tests && step_prefix && unpacked=$(unpackZip "$work/bus") || return
    rm -f "$out/output"
    "$guest/boot.sh" "$out" "$guestLimit" "$driver/bin/hostclock" \
        env "TALVEX_TEST_WINDOWS=$unpacked" "TALVEX_WINDOWS_BESIDE=$windowsTests/tests/windows/bus" \
        "$PWD/$guest/run-windows-tests.sh" "$driver" "$winePrefix" "$waitLimit" || result=$?
    [ ! -e "$out/output" ] || cat "$out/output"
    return "$result"
}
