#!/bin/bash
# memory.sh BUILD-DIR IMAGE-BYTES
# Runs the shipped program twice on the current screen and prints its peak resident sizes so far, "LABEL peak=KB":
# idle: just started; then, with mouse clicks, connected: to a unit; streaming: an image of that size has been read and
# its digest computed; sending: the image has been sent. Works in the current directory, which must be empty.
set -euo pipefail

build=$1
imageBytes=$2
program=

finish() {
    if [ -n "$program" ]; then
        kill "$program" 2> /dev/null || true
        wait "$program" 2> /dev/null || true
    fi
    program=
}
trap finish EXIT

start() {
    TALVEX_VIRTUAL_UNITS='' \
        LD_PRELOAD="$build/virtualunit/hidapi/libtalvex-virtual-hid.so $build/bench/libbench-unit.so" \
        ./talvex-updater 2> diagnostics &
    program=$!
    window=$(timeout 20 xdotool search --sync --all --onlyvisible --pid "$program" --name '^Talvex updater v')
}

click() {
    xdotool mousemove --sync --window "$window" "$1" "$2" click 1
}

peak() {
    awk '$1 == "VmHWM:" { print $2 }' "/proc/$program/status"
}

# The peak once it has not grown for a second: the window has been painted.
settledPeak() {
    local before=0 now
    for _ in {1..20}; do
        now=$(peak)
        if [ "$now" = "$before" ]; then
            break
        fi
        before=$now
        sleep 1
    done
    echo "$now"
}

# told WORDS SECONDS: waits until the unit's diagnostics say WORDS.
told() {
    local end=$((SECONDS + $2))
    until grep -q "$1" diagnostics; do
        [ "$SECONDS" -lt "$end" ] && kill -0 "$program"
        sleep 0.2
    done
}

send() {
    click 120 425 # Connect
    local box
    box=$(timeout 20 xdotool search --sync --all --onlyvisible --pid "$program" --name '^Info$')
    xdotool windowfocus --sync "$box" key Return
    while xdotool search --all --onlyvisible --pid "$program" --name '^Info$' > /dev/null; do
        sleep 0.1
    done
    echo "connected peak=$(settledPeak)"
    click 365 425 # Update Device
    told 'transfer requested' 20
    echo "streaming peak=$(settledPeak)"
    told 'transfer over' $((imageBytes / 60 / 500 + 20))
}

cp "$build/bin/talvex-updater" .
head -c "$imageBytes" /dev/urandom > SUPER_MEGA_UPDATE.sb
start
echo "idle peak=$(settledPeak)"
finish
start
send
echo "sending peak=$(peak)"
