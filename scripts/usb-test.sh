#!/bin/bash
# Tests the shipped program, with both flavours of the HID library, on a real USB bus: that of a guest system with
# Debian's kernel in an emulated computer. Installs what it needs, for which alone it needs root or sudo.
set -euo pipefail

cd "$(dirname "$(realpath "$0")")/.."
source scripts/lib/packages.sh

tests=build-test
guests=$tests/tests/usb/guests
junit=$PWD/artifacts/test/junit
jobs=$(nproc)
lowestRatio=0.95

build() {
    cmake -S . -B build && cmake --build build -j "$jobs"
    cmake --preset hidraw && cmake --build --preset hidraw -j "$jobs"
    cmake --preset test "-DTALVEX_USB_ALL=${TALVEX_USB_ALL:-OFF}"
    cmake --build "$tests" -j "$jobs" --target usb-tests
}

# Prints the reports per second that the program reached, next to those of a loop that only writes, paced by the same
# timer; and those of a pair of decks, each of which gets all of them, next to those of a single deck. Returns 1 unless
# there is one line for each update measured.
printRates() {
    printf '%-8s %-8s %10s %10s %8s\n' flavour unit program/s loop/s ratio
    awk -v bar="$lowestRatio" -v updates=6 '
        { print; rate[$1, $2] = $3; flavours[$1] }
        $5 < bar { low = low "SLOW: " $1 " " $2 ": " $5 " of the bare loop, less than " bar "\n" }
        END {
            for (flavour in flavours)
                if (rate[flavour, "plt70"] > 0)
                    printf "%-8s pair (trk300) for one (plt70): %.3f\n", flavour,
                        rate[flavour, "trk300"] / rate[flavour, "plt70"]
            printf "%s", low
            if (NR != updates) print "MISSING: " NR " rates instead of " updates
            exit NR != updates
        }' "$guests"/{libusb,hidraw}/results/rates
}

installMissing "${buildPackages[@]}" "${stagePackages[@]}" "${guestPackages[@]}"
export CMAKE_CXX_COMPILER_LAUNCHER=ccache
build
SECONDS=0
result=0
rm -rf "$guests" # an earlier run's results must not pass for this one's
ctest --test-dir "$tests" -L usb --no-tests=error --output-on-failure --output-junit "$junit/usb.xml" -j 3 || result=$?
printRates || result=1
echo "USB tests: $SECONDS s"
exit "$result"
