# shellcheck shell=bash
# What an ordinary user may do with a unit, without and with the rule of packaging/linux. Sourced, not run.

# letIn PATH...: an ordinary user may get at these, wherever the tree lies (only the scratch layer learns of it).
letIn() {
    local path
    for path in "$@"; do
        path=$(realpath "$path")
        while [ "$path" != / ]; do
            chmod o+rX "$path"
            path=$(dirname "$path")
        done
    done
}

# sitDown USER: makes that user the one who sits at the computer, as the login manager notes it.
sitDown() {
    mkdir -p /run/systemd/seats
    printf 'ACTIVE=c1\nACTIVE_UID=%d\n' "$1" > /run/systemd/seats/seat0
}

# plugInFor DIRECTORY [,OPTION...]: a unit HB4; its files come into DIRECTORY. Sets gadgetPid.
plugInFor() {
    talvex-gadget "hb4,version=23,period-ms=100,journal=$1/unit.journal,image=$1/unit.image${2:-}" > "$1/plugged" &
    gadgetPid=$!
    await compgen -G '/sys/bus/hid/devices/0003:3A5D:*/hidraw/hidraw*' || return 1
    settle
}

# unitNodes: the device files of the units that are plugged in, for the HID driver and for direct use of the bus.
unitNodes() {
    local unit node
    for unit in /sys/bus/hid/devices/0003:3A5D:*; do
        for node in "$unit"/hidraw/hidraw*; do
            echo "/dev/${node##*/}"
        done
        sed -n 's,^DEVNAME=,/dev/,p' "$(realpath "$unit/../..")/uevent"
    done
}

# awaitAccess COMMAND...: waits until whoever COMMAND makes of this user may use the units; the device manager may take
# its time.
awaitAccess() {
    local node
    for node in $(unitNodes); do
        await "$@" test -r "$node" -a -w "$node" || true # the test will say what that means
    done
}

pullOut() {
    kill "$gadgetPid"
    wait "$gadgetPid"
    settle
}

# testAccess RULE RUNNER: RUNNER is called with the name and the function of a test, and then a command to run it by.
testAccess() {
    local rule=$1 runner=$2 user=1000 folder=$TMPDIR/unit
    local asUser=(setpriv --reuid "$user" --regid "$user" --clear-groups)
    export TALVEX_TEST_UNIT=$folder
    install -d -m 777 "$folder"
    sitDown "$user"

    rm -f /etc/udev/rules.d/*talvex* /usr/lib/udev/rules.d/*talvex*
    udevadm control --reload
    plugInFor "$folder"
    "$runner" tst_usbaccess withoutAccess "${asUser[@]}"
    pullOut

    cp "$rule" /etc/udev/rules.d/
    udevadm control --reload
    plugInFor "$folder"
    awaitAccess "${asUser[@]}"
    "$runner" tst_usbaccess withAccess "${asUser[@]}"
    pullOut
}
