# shellcheck shell=bash
# What the bundle's scripts do for an ordinary user of this computer, who may become root with sudo. Sourced, after
# access.sh, not run.

# prepareInstallation BUILD USER: the user, and files and file systems for the test, in TMPDIR.
prepareInstallation() {
    local build=$1 user=$2 place
    getent passwd "$user" > /dev/null || useradd --uid "$user" --no-create-home musician
    # The device manager is not to mind that this is no whole system, for sudo either.
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

# testInstallation BUILD RULE RUNNER: RUNNER as for testAccess.
testInstallation() {
    local build=$1 rule=$2 runner=$3 user=1000 folder=$TMPDIR/installation function
    local asUser=(setpriv --reuid "$user" --regid "$user" --clear-groups)
    install -d -m 777 "$folder"
    prepareInstallation "$build" "$user"
    rm -f /etc/udev/rules.d/*talvex* /usr/lib/udev/rules.d/*talvex*
    udevadm control --reload

    sitDown "$user"
    plugInFor "$folder"
    for function in withoutRule installation inUse supportReport readOnlyMenu fullMenu readOnlyFolder smallFolder; do
        "$runner" tst_usbinstall "$function" "${asUser[@]}"
    done
    pullOut
    "$runner" tst_usbinstall noUnit "${asUser[@]}"

    sitDown 4711
    plugInFor "$folder"
    "$runner" tst_usbinstall somebodyElseSits "${asUser[@]}"
    pullOut

    sitDown "$user"
    "$runner" tst_usbinstall removal "${asUser[@]}"
    plugInFor "$folder"
    cp "$rule" /etc/udev/rules.d/ # which nobody is told
    "$runner" tst_usbinstall ruleNotApplied "${asUser[@]}"
    pullOut
}
