# shellcheck shell=bash
# What the bundle's scripts do for an ordinary user of this computer, who may become root with sudo. Sourced, after
# access.sh, not run.

# prepareInstallation BUILD USER: the user, and files and file systems for the test, in TMPDIR.
prepareInstallation() {
    local build=$1 user=$2 place
    getent passwd "$user" > /dev/null || useradd --uid "$user" --no-create-home musician
    # Under sudo, too, the device manager must put up with a system that is not whole.
    printf "%s\n" 'Defaults env_keep += "SYSTEMD_IGNORE_CHROOT"' "#$user ALL=(ALL) NOPASSWD: ALL" > /etc/sudoers.d/talvex-test
    chmod 440 /etc/sudoers.d/talvex-test
    cmake --install "$build" --component surroundings --prefix "$TMPDIR/surroundings" > /dev/null
    for place in small readonly; do
        mkdir "$TMPDIR/$place"
        mount -t tmpfs -o "size=512k,mode=777" tmpfs "$TMPDIR/$place"
        cp -r "$TMPDIR/surroundings" "$TMPDIR/$place/updater"
        chown -R "$user" "$TMPDIR/$place/updater"
    done
    mount -o remount,ro "$TMPDIR/readonly"
    mkdir "$TMPDIR/full"
    mount -t tmpfs -o "size=4k,mode=777" tmpfs "$TMPDIR/full"
    head -c 4096 /dev/zero > "$TMPDIR/full/filling"
}

# releaseUnits: the kernel's driver lets go of the units that are plugged in.
releaseUnits() {
    local interface
    for interface in /sys/bus/usb/drivers/usbhid/*:*; do
        echo "${interface##*/}" > /sys/bus/usb/drivers/usbhid/unbind
    done
    settle
}

# testInstallation BUILD RUNNER: RUNNER as for testAccess.
testInstallation() {
    local build=$1 runner=$2 user=1000 folder=$TMPDIR/installation function row
    local asUser=(setpriv --reuid "$user" --regid "$user" --clear-groups)
    install -d -m 777 "$folder"
    prepareInstallation "$build" "$user"
    rm -f /etc/udev/rules.d/*talvex* /usr/lib/udev/rules.d/*talvex*
    udevadm control --reload

    sitDown "$user"
    # What a computer with the rule, which runs the tests, cannot show. It needs no ordinary user.
    "$runner" tst_installrule
    plugInFor "$folder"
    for function in withoutRule installation inUse supportReport menu readOnlyFolder smallFolder; do
        "$runner" tst_usbinstall "$function" "${asUser[@]}"
    done
    chmod 600 "$(unitNodes | grep /bus/)" # which also masks what the device manager has granted
    "$runner" tst_usbinstall "reason:rights taken away" "${asUser[@]}"
    pullOut
    "$runner" tst_usbinstall "reason:no unit" "${asUser[@]}"

    plugInFor "$folder" ,no-product=yes
    "$runner" tst_usbinstall "reason:no name" "${asUser[@]}"
    releaseUnits
    "$runner" tst_usbinstall "reason:no driver" "${asUser[@]}"
    pullOut

    sitDown 4711
    plugInFor "$folder"
    "$runner" tst_usbinstall "reason:somebody else sits" "${asUser[@]}"
    pullOut

    rm /run/systemd/seats/seat0
    plugInFor "$folder"
    "$runner" tst_usbinstall "reason:nobody sits" "${asUser[@]}"
    pullOut

    sitDown "$user"
    for row in "sudo refuses" "sudo says yes and does nothing" "sudo obeys"; do
        "$runner" tst_usbinstall "removal:$row" "${asUser[@]}"
    done
    plugInFor "$folder"
    "$runner" tst_usbinstall deviceManagerDeaf "${asUser[@]}"
    "$runner" tst_usbinstall ruleNotApplied "${asUser[@]}" # by what the one before has installed
    "$runner" tst_usbinstall "removal:the device manager is deaf" "${asUser[@]}"
    pullOut
}
