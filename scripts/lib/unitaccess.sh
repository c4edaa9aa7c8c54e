# shellcheck shell=sh
# Which units are connected to this computer, and may this user open them? For the scripts that come with the program.
# Sourced, not run.

vendorId=3a5d
ruleName=70-talvex-updater.rules

# unitFolders: the folder in /sys of each connected unit, one a line.
unitFolders() {
    for unitFolder in /sys/bus/usb/devices/*; do
        if [ "$(cat "$unitFolder/idVendor" 2> /dev/null)" = "$vendorId" ]; then
            echo "$unitFolder"
        fi
    done
}

# busNode UNIT: the device file for direct use of the bus.
busNode() {
    printf '/dev/bus/usb/%03d/%03d\n' "$(cat "$1/busnum")" "$(cat "$1/devnum")"
}

# hidNodes UNIT: the device files of the kernel's HID driver; none while a program uses the unit directly.
hidNodes() {
    for hidFolder in "$1"/*:*/*/hidraw/hidraw*; do
        if [ -e "$hidFolder" ]; then
            echo "/dev/${hidFolder##*/}"
        fi
    done
}

# canOpen NODE: whether this user may read and write it. It is really opened, which does nothing to the unit; but for one
# that was just pulled out, it would make a file.
canOpen() {
    [ -c "$1" ] && (exec 3<> "$1") 2> /dev/null
}

# isUsedDirectly UNIT: whether some program has taken the unit from the kernel's HID driver.
isUsedDirectly() {
    for interface in "$1"/*:*; do
        driver=$(readlink "$interface/driver") || continue
        if [ "${driver##*/}" = usbfs ]; then
            return 0
        fi
    done
    return 1
}

# usersOf NODE...: the names of the programs that have one of them open, as far as this user may know.
usersOf() {
    # shellcheck disable=SC2046  # the names of device files have no blanks
    find /proc/[0-9]*/fd -maxdepth 1 -false $(printf ' -o -lname %s' "$@") 2> /dev/null |
        while IFS=/ read -r _ _ holder _; do
            cat "/proc/$holder/comm" 2> /dev/null
        done | sort -u | tr '\n' ' ' | sed 's/ $//'
}

# installedRule: where the rule is; nothing if it is not installed.
installedRule() {
    for ruleFolder in /etc/udev/rules.d /run/udev/rules.d /usr/local/lib/udev/rules.d /usr/lib/udev/rules.d /lib/udev/rules.d; do
        if [ -e "$ruleFolder/$ruleName" ]; then
            echo "$ruleFolder/$ruleName"
            return
        fi
    done
}

# activeUser: the number of the user who sits at this computer; nothing if the system does not know.
activeUser() {
    sed -n 's/^ACTIVE_UID=//p' /run/systemd/seats/seat0 2> /dev/null
}

# isApplied NODE: whether the device manager has handled the unit by the rule.
isApplied() {
    udevadm info --query=property --name="$1" 2> /dev/null | grep -q '^TAGS=.*:uaccess:'
}

# isAppliedToAll: the same of every unit that is connected.
isAppliedToAll() {
    for unit in $(unitFolders); do
        for node in $(busNode "$unit") $(hidNodes "$unit"); do
            isApplied "$node" || return
        done
    done
}

# whyNot NODE: says why this user may not open it.
whyNot() {
    if [ -z "$(installedRule)" ]; then
        echo "the rule $ruleName is not installed"
    elif ! isApplied "$1"; then
        echo "the rule is installed, but was not yet applied to this unit: unplug it and plug it in again"
    elif [ -z "$(activeUser)" ]; then
        echo "the system does not say who sits at this computer; the rule gives access to that user alone"
    elif [ "$(activeUser)" != "$(id -u)" ]; then
        echo "you are not the one who sits at this computer (logged in from elsewhere, or somebody else has the screen)"
    else
        echo "unknown: $(ls -l "$1" 2>&1)"
    fi
}

# describeNode KIND NODE: one line on whether this user may open it.
describeNode() {
    if canOpen "$2"; then
        echo "    $1: yes ($2)"
    else
        echo "    $1: no ($2): $(whyNot "$2")"
        return 1
    fi
}

# describeUse UNIT: says if another program uses it.
describeUse() {
    # shellcheck disable=SC2046  # the names of device files have no blanks
    users=$(usersOf "$(busNode "$1")" $(hidNodes "$1"))
    if isUsedDirectly "$1" || [ -n "$users" ]; then
        echo "    in use by a program${users:+: $users}: close it before you press Connect"
        return 1
    fi
}

# describeUnits: one paragraph for each connected unit. Returns 1 if this user cannot use one of them.
describeUnits() {
    unusable=0
    found=no
    # Folders of /sys have no blanks.
    for unit in $(unitFolders); do
        found=yes
        printf '  %s, USB ID %s\n' "$(cat "$unit/product" 2> /dev/null || echo "(no name)")" \
            "$vendorId:$(cat "$unit/idProduct")"
        describeNode "directly on the bus" "$(busNode "$unit")" || unusable=1
        nodes=$(hidNodes "$unit")
        for node in $nodes; do
            describeNode "through the kernel's driver" "$node" || unusable=1
        done
        describeUse "$unit" || unusable=1
        if [ -z "$nodes" ] && ! isUsedDirectly "$unit"; then
            echo "    through the kernel's driver: no, the driver does not have this unit"
        fi
    done
    if [ "$found" = no ]; then
        echo "  none"
    fi
    return "$unusable"
}
