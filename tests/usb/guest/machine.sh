# shellcheck shell=bash
# Makes the guest a computer with a USB bus of its own, two USB device ports on it, and a screen. Sourced, not run.

# await COMMAND...: tries until it succeeds; returns 1 where it never does, after hangLimit s.
await() {
    local end=$((SECONDS + ${hangLimit:?}))
    until "$@" > /dev/null 2>&1; do
        if ((SECONDS >= end)); then
            echo "never succeeded: $*" >&2
            return 1
        fi
        sleep 0.1 # between two looks
    done
}

settle() {
    udevadm settle --timeout="${hangLimit:?}"
}

prepareMachine() {
    export PATH=/usr/sbin:/usr/bin:/sbin:/bin LANG=C.UTF-8 HOME=/root TMPDIR=/run/tests
    mkdir -p /dev/shm "$TMPDIR"
    chmod 1777 "$TMPDIR"
    mount -t tmpfs -o mode=1777 tmpfs /dev/shm
    ip link set lo up
    # Programs hear of units plugged in from the device manager. It is not to mind that this is no whole system.
    export SYSTEMD_IGNORE_CHROOT=1
    /lib/systemd/systemd-udevd --daemon
    modprobe -a libcomposite usb_f_hid usbhid hid-generic
    modprobe dummy_hcd num=2 is_high_speed=1
    mount -t configfs configfs /sys/kernel/config
    settle
}

hasWindowManager() {
    xprop -root _NET_SUPPORTING_WM_CHECK | grep -q 'window id'
}

# startScreen: a screen with a window manager, for all that is started from now on.
startScreen() {
    local number
    mkfifo "$TMPDIR/display"
    Xvfb -displayfd 9 -screen 0 1024x768x24 -nolisten tcp -noreset -ac -extension GLX 9> "$TMPDIR/display" &
    read -r number < "$TMPDIR/display"
    export DISPLAY=:$number TALVEX_TEST_DISPLAY=:$number
    openbox --sm-disable > /dev/null 2>&1 &
    await hasWindowManager
}
