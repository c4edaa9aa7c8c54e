#!/bin/bash
# wine.sh PROGRAM [ARGUMENT]...: runs a test for Windows under Wine, in a copy of the prefix that TALVEX_WINE_PREFIX
# names (scripts/windows.sh prefix). The libraries are found in the folders of TALVEX_WINE_PATH, parted by colons.
set -euo pipefail

prefix=$(mktemp -d "${TALVEX_WINE_PREFIX:?}-XXXXXX")
cleanUp() {
    WINEPREFIX=$prefix wineserver -k || true
    rm -rf "$prefix"
}
trap cleanUp EXIT
"$(dirname "$0")/copyprefix.sh" "$prefix"

windowsPath=
IFS=: read -ra folders <<< "$TALVEX_WINE_PATH"
for folder in "${folders[@]}"; do
    windowsPath+="Z:${folder//\//\\};"
done
export LC_ALL=C.UTF-8 # from which Wine takes Windows' code page
export WINEPREFIX=$prefix WINEPATH=$windowsPath WINEDEBUG=-all WINEDLLOVERRIDES="mscoree,mshtml="
# Wine keeps QT_* from the program.
export WINEQT_QPA_PLATFORM=${QT_QPA_PLATFORM:-offscreen} WINEQT_QPA_FONTDIR='Z:\usr\share\fonts\truetype\dejavu'
export WINEQT_FORCE_STDERR_LOGGING=1
wine "$@"
