#!/bin/bash
# run-windows-tests.sh BUILD PREFIX HANG_LIMIT
# In the guest: the program for Windows, under Wine, on its USB bus. BUILD is the build tree with the tests, PREFIX the
# Wine prefix to copy, HANG_LIMIT how long a wait may take on a real processor, in s; the rest comes from the
# environment (tests/harness/wine.h). Returns 0 if all is good.
set -euo pipefail

build=$1
prefix=$2
# An emulated processor takes ten times as long for all it does, and its host may be busy.
export TALVEX_TEST_PATIENCE=4
hangLimit=$(($3 * TALVEX_TEST_PATIENCE))
# shellcheck source-path=SCRIPTDIR
source "$(dirname "$(realpath "$0")")/machine.sh"

export TALVEX_TEST_PAUSE_MS=20 TALVEX_TEST_ARTIFACTS=/run/guest-out/pictures

cd /run
prepareMachine
# The tests link to its files, which only works within one file system.
export TALVEX_WINE_PREFIX=$TMPDIR/prefix
cp -a "$prefix" "$TALVEX_WINE_PREFIX"
# Wine asks the kernel for devices only where it is not to ask SDL.
(
    export WINEPREFIX=$TALVEX_WINE_PREFIX WINEDEBUG=-all WINEDLLOVERRIDES='mscoree,mshtml='
    wine reg add 'HKLM\System\CurrentControlSet\Services\winebus' /v 'Enable SDL' /t REG_DWORD /d 0 /f
    wineserver -k || true # it may have ended by itself
    wineserver -w
)
startScreen
result=0
"$build/bin/tst_usbwindows" || result=1
"$build/bin/tst_usblog" "wholeLog:header first" || result=1
exit "$result"
