#!/bin/bash
# scripts/bench.sh [GROUP]...
# Builds the benchmarks and prints each figure beside its baseline from the same run and its limit; about 13 minutes for
# all groups: stream growth start log memory rules. Exits with 1 if a limit is missed, or if nothing was measured of a
# group. The machine should be idle.
# Two groups are only measured when asked for: bundle, about the archive that scripts/package.sh has made, and windows,
# about the program for Windows under Wine (scripts/windows.sh).
set -euo pipefail
cd "$(dirname "$0")/.."
# shellcheck source=scripts/lib/packages.sh
. scripts/lib/packages.sh

groups=${*:-stream growth start log memory rules}
build=$PWD/build-bench
work=$(mktemp -d)
results=$work/results
: > "$results"
pids=()
trap 'kill "${pids[@]}" 2> /dev/null || true; wait; rm -rf "$work"' EXIT

# What a run of each group is called in the results.
declare -A firstLabel=([stream]=stream [growth]=small [start]=updater [log]=program [memory]=short [bundle]=bundled
    [windows]=wstream)

wanted() {
    case " $groups " in *" $1 "*) return 0 ;; esac
    return 1
}

# Opens a screen; without one the windows are painted in memory, and whatever needs a screen is left out.
openScreen() {
    export XDG_RUNTIME_DIR=$work QT_LOGGING_RULES='qt.qpa.xcb=false'
    export DBUS_SESSION_BUS_ADDRESS=disabled: # otherwise the first window with text starts a bus
    mkfifo "$work/display"
    Xvfb -displayfd 3 -screen 0 1280x1024x24 -nolisten tcp -noreset 3> "$work/display" 2> /dev/null &
    pids+=($!)
    local number
    if read -r -t 20 number < "$work/display"; then
        export DISPLAY=:$number QT_QPA_PLATFORM=xcb
    else
        echo "Xvfb does not start: start-up and whole-program memory are not measured." >&2
        unset DISPLAY
        export QT_QPA_PLATFORM=offscreen
    fi
}

# run LABEL PROGRAM ARGUMENT...: one run, in the program's directory.
run() {
    local label=$1 program=$2 output
    shift 2
    if ! output=$(cd "$work/run" && timeout 900 "$program" "$@" 2> "$work/diagnostics"); then
        echo "bench.sh: $label failed:" >&2
        cat "$work/diagnostics" >&2
        exit 1
    fi
    echo "$label $output" >> "$results"
}

# alternate ROUNDS COMMAND...: runs the commands in turn, in reverse order every other round.
alternate() {
    local rounds=$1 round i
    shift
    local -a commands=("$@")
    for ((round = 0; round < rounds; ++round)); do
        for ((i = 0; i < $#; ++i)); do
            ${commands[round % 2 ? $# - 1 - i : i]} "$round"
        done
        printf '.' >&2
    done
}

# The rounds of a stream are consecutive pieces of one image of 6 MB, 100 000 packets.
stream() { run stream "$work/run/bench-transfer" stream 6000000 $(($1 * 10000 + 1)) 9700; }
ticks() { run ticks "$work/run/bench-transfer" ticks 6000000 $(($1 * 10000 + 1)) 3000; }
writes() { run writes "$work/run/bench-transfer" writes 6000000 1 3000; }

small() { run small "$work/run/bench-transfer" stream 150000 1 2299; }
early() { run early "$work/run/bench-transfer" stream 15000000 1 2299; }
late() { run late "$work/run/bench-transfer" stream 15000000 247500 2299; }

updater() { run updater "$build/bench/bench-start" "$work/run/talvex-updater"; }
empty() { run empty "$build/bench/bench-start" "$build/bench/bench-emptywindow"; }

# The bundle, beside the same program with the system's libraries.
bundled() { run bundled "$build/bench/bench-start" "$work/bundle/talvex-updater"; }
linked() { run linked "$build/bench/bench-start" "$PWD/build-bundle/bin/talvex-updater"; }

# Unpacks the bundle and starts it for the first time.
firstStart() {
    local archives=("$PWD"/artifacts/package/*.tar.gz) began unpacked window
    if [ ! -e "${archives[0]}" ]; then
        echo "bench.sh: there is no archive; scripts/package.sh makes it" >&2
        exit 1
    fi
    mkdir "$work/bundle"
    began=$(date +%s%N)
    tar -xzf "${archives[0]}" -C "$work/bundle" --strip-components=1
    unpacked=$(date +%s%N)
    "$build/bench/bench-start" "$work/bundle/talvex-updater" > /dev/null
    window=$(date +%s%N)
    echo "From the archive to the window: $(((window - began) / 1000000)) ms," \
        "of which $(((unpacked - began) / 1000000)) ms for unpacking"
}

logOf() { run "$1" "$work/run/bench-log" "$1" "$2"; }
program() { logOf program 250000; }
bare() { logOf bare 250000; }
lean() { logOf lean 250000; }
chain() { logOf chain 250000; }

# The long ones, in parallel: a busy processor does not affect memory sizes.
sizes() {
    if [ -n "${DISPLAY:-}" ]; then
        mkdir "$work/memory"
        (cd "$work/memory" && "$OLDPWD/bench/memory.sh" "$build" 15000000 > "$work/sizes") &
        pids+=($!)
    fi
    run short "$work/run/bench-log" program 20000
    run long "$work/run/bench-log" program 20000000
    if [ -n "${DISPLAY:-}" ]; then
        wait "${pids[-1]}"
        cat "$work/sizes" >> "$results"
    fi
}

# The same two for Windows, where packets need not be as many: a tick is longer there.
windowsRun() {
    WINEPREFIX=$work/prefix WINEPATH="Z:${work//\//\\}\\windows" WINEDEBUG=-all WINEQT_QPA_PLATFORM=windows \
        run "$1" wine "$work/windows/bench-transfer.exe" "$2" 6000000 $(($3 * 10000 + 1)) 5000
}
wstream() { windowsRun wstream stream "$1"; }
wticks() { windowsRun wticks ticks "$1"; }

# Builds the measured program for Windows and puts it beside the libraries it needs. Not to be called in a condition,
# where a failure in it would not end the script.
prepareWindows() {
    scripts/windows.sh qt hidapi prefix
    cmake --preset windows-bench > "$work/configure"
    cmake --build --preset windows-bench -j "$(nproc)"
    mkdir "$work/windows" "$work/prefix"
    cp build-windows-bench/bench/bench-transfer.exe build-windows-bench/bin/hidapi.dll "$work/windows"
    windowsLibraries=$PWD/build-windows-libraries
    # shellcheck source=scripts/lib/windows-zip.sh
    . scripts/lib/windows-zip.sh
    addImports "$work/windows/bench-transfer.exe" "$work/windows"
    cp -r "$windowsLibraries/qt/plugins/platforms" "$windowsLibraries/qt/plugins/styles" "$work/windows"
    cp -a "$windowsLibraries/prefix/." "$work/prefix"
}

installMissing "${buildPackages[@]}" "${benchPackages[@]}"
CMAKE_CXX_COMPILER_LAUNCHER=ccache cmake --preset bench > "$work/configure" || { cat "$work/configure"; exit 1; }
mkdir "$work/run"
if [ "$groups" = bundle ]; then
    cmake --build --preset bench -j "$(nproc)" --target bench-start
elif [ "$groups" != windows ]; then
    cmake --build --preset bench -j "$(nproc)"
    cp "$build/bin/talvex-updater" "$build/bench/bench-transfer" "$build/bench/bench-log" "$work/run"
fi
openScreen
uptime

if wanted stream; then alternate 10 stream ticks writes; fi
if wanted windows; then prepareWindows; alternate 5 wstream wticks; fi
if wanted growth; then alternate 5 small early late; fi
if wanted start && [ -n "${DISPLAY:-}" ]; then alternate 20 updater empty; fi
if wanted bundle && [ -n "${DISPLAY:-}" ]; then firstStart; alternate 60 bundled linked; fi
if wanted log; then alternate 5 program bare lean chain; fi
if wanted memory; then sizes; fi
echo
if wanted rules; then "$build/bench/bench-rules" 2> /dev/null; fi
uptime
missed=0
awk -f bench/table.awk "$results" bench/bars.txt || missed=1
for group in $groups; do
    if [ "$group" != rules ] && ! grep -q "^${firstLabel[$group]:-no such group} " "$results"; then
        echo "bench.sh: nothing was measured of the group $group" >&2
        missed=1
    fi
done
[ "$missed" -eq 0 ]
