#!/bin/bash
# Boots Debian's kernel in an emulated machine that sees this system's files (a scratch layer takes what it writes)
# and runs a command there as root.
# OUT, shared with the guest as /run/guest-out, gets `output`, `exit` (its exit code) and `console`. CLOCK is
# hostclock, built.
# Returns the command's exit code, or 125 if the guest did not come up or did not end within LIMIT seconds.
set -euo pipefail

usage="usage: boot.sh OUT LIMIT CLOCK COMMAND [ARGUMENT...]"
mkdir -p "${1:?$usage}"
out=$(realpath "$1")
limit=${2:?$usage}
khz=$("${3:?$usage}")
shift 3
here=$(dirname "$(realpath "$0")")

kernel=$(find /boot -name 'vmlinuz-*-amd64' | sort -V | tail -n 1)
if [ -z "$kernel" ]; then
    echo "boot.sh: no kernel in /boot (Debian: linux-image-amd64)" >&2
    exit 125
fi
version=${kernel#/boot/vmlinuz-}

# Prints the module files that the guest needs before it can see the host's tree, each after those it needs.
modules_in_order()
{
    local module
    for module in virtio_pci 9p 9pnet_virtio overlay; do
        modprobe --set-version "$version" --ignore-install --show-depends "$module"
    done | awk '$1 == "insmod" && !seen[$2]++ { print $2 }'
}

make_initramfs()
{
    local root=$1 file
    mkdir -p "$root"/{bin,modules,proc,sys,dev,host,scratch,root,out}
    cp /bin/busybox "$root/bin/busybox"
    ln -s busybox "$root/bin/sh"
    cp "$here/init" "$root/init"
    chmod 755 "$root/init"
    for file in $(modules_in_order); do
        cp "$file" "$root/modules/"
        basename "$file" >> "$root/modules/order"
    done
    (cd "$root" && find . | cpio --quiet -o -H newc)
}

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
make_initramfs "$work/root" > "$work/initramfs"

rm -f "$out/exit" "$out/output" "$out/console"
printf 'exec ' > "$out/command"
printf '%q ' "$@" >> "$out/command"

# No hardware virtualisation: machines that run tests rarely have any that works. Emulated, one processor does the
# same work for half the price of two; clearing all memory and asking an emulated clock chip for the time cost more
# than they are worth. The kernel's check of its timer panics when a busy host lets too few ticks through. Wine returns
# from its system calls by iretq, for which QEMU 7.2 reads the program's stack as the kernel, which a processor with SMAP
# forbids.
timeout --kill-after=10 "$limit" qemu-system-x86_64 \
    -accel tcg,thread=single -cpu max,smap=off -smp 1 -m 2048 -nographic -no-reboot -nodefaults -serial stdio \
    -kernel "$kernel" -initrd "$work/initramfs" \
    -append "console=ttyS0 quiet panic=-1 mitigations=off init_on_alloc=0 hpet=disable \
no_timer_check tsc=reliable clocksource=tsc tsc_early_khz=$khz" \
    -virtfs local,path=/,mount_tag=host,security_model=none,readonly=on,multidevs=remap \
    -virtfs "local,path=$out,mount_tag=out,security_model=none" \
    < /dev/null > "$out/console" 2>&1 || echo "boot.sh: the guest ended with $?" >&2

if [ ! -s "$out/exit" ]; then
    echo "boot.sh: the guest did not finish within $limit s; its console:" >&2
    tail -n 40 "$out/console" >&2
    exit 125
fi
exit "$(cat "$out/exit")"
