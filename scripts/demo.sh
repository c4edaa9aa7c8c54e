#!/bin/bash
# Shows a whole update: builds the program, starts an update server and a virtual unit, and opens the window.
# With a screen, you click through it. Without one, or with --auto, it runs on a virtual screen, and a driver presses
# the buttons, from Connect to "Update: finished", and saves a picture of each stage.
# Exit code 0: the unit holds exactly the image that the server sent.
set -euo pipefail

usage() {
    cat << 'END'
usage: scripts/demo.sh [--auto] [--signed] [--output FOLDER] [-- OPTION...]
  --auto           let the driver press the buttons on a virtual screen
  --signed         build the program with a catalogue key, and sign the catalogue
  --output FOLDER  where to put the driver's pictures (default: artifacts/demo)
  -- OPTION...     passed on to the driver
END
}

cd "$(dirname "$(realpath "$0")")/.."
source scripts/lib/packages.sh
source scripts/lib/signing.sh
source scripts/lib/updateserver.sh

build="build-demo"
auto=no
signed=no
key=
output=artifacts/demo
imageBytes=1500000
logBytes=120000
installMs=4000
if [ -z "${DISPLAY:-}" ]; then
    auto=yes
fi
while [ $# -gt 0 ]; do
    case $1 in
        --auto) auto=yes ;;
        --signed) signed=yes ;;
        --output) output=${2:?$(usage)} && shift ;;
        --help) usage && exit 0 ;;
        --) shift && break ;;
        *) usage >&2 && exit 2 ;;
    esac
    shift
done

work=$(mktemp -d)
export TMPDIR=$work # so that the driver leaves nothing behind either
child=
cleanUp() {
    trap - EXIT INT TERM
    if [ -n "$child" ]; then
        kill "$child" 2> /dev/null || true
        wait "$child" 2> /dev/null || true
    fi
    stopServer
    rm -rf "$work"
}
trap cleanUp EXIT
trap 'exit 130' INT
trap 'exit 143' TERM

# Waits so that a signal takes effect at once.
runAndWait() {
    "$@" &
    child=$!
    local code=0
    wait "$child" || code=$?
    child=
    return "$code"
}

buildAll() {
    CMAKE_CXX_COMPILER_LAUNCHER=ccache cmake --preset demo "-DTALVEX_CATALOGUE_KEY=$key" > "$work/configure.log" ||
        { cat "$work/configure.log"; return 1; }
    cmake --build --preset demo
}

# Signs the catalogue as a vendor does, and shows how anybody can check it.
signCatalogue() {
    local catalogue=$work/root/wp-content/uploads/versions.txt
    minisign -S -s "$build/catalogue.key" -m "$catalogue" -t "the demo's catalogue" > /dev/null
    echo "The program accepts only a catalogue signed with this key:"
    echo "    $key"
    minisign -V -P "$key" -m "$catalogue" | sed 's/^/    /'
}

# Becomes the program.
runByHand() {
    mkdir "$work/app"
    cp "$build/bin/talvex-updater" "$work/app/"
    echo
    echo "The window is open. A unit HB4 with firmware 2.3 is plugged in; the server has 2.8."
    echo "Press Connect, accept the update, press Update Device and wait for \"Update: finished\"."
    cd "$work/app"
    export http_proxy=$proxy TALVEX_VIRTUAL_UNITS=$unit
    LD_PRELOAD=$OLDPWD/$build/virtualunit/hidapi/libtalvex-virtual-hid.so exec ./talvex-updater
}

installMissing "${buildPackages[@]}" "${stagePackages[@]}"
if [ "$signed" = yes ]; then
    key=$(signingKey "$build")
fi
buildAll
server/make-content.sh "$work/root" "$imageBytes" 28
if [ "$signed" = yes ]; then
    signCatalogue
fi
startServer "$work/root" "$work"
proxy=http://127.0.0.1:$serverPort
head -c "$logBytes" /dev/urandom > "$work/unit.log"
unit=hb4,version=23,image=$work/unit.image,journal=$work/unit.journal,install-ms=$installMs,log=$work/unit.log

if [ "$auto" = yes ]; then
    mkdir -p "$output"
    echo "The driver updates a virtual unit with $imageBytes bytes, then downloads its log of $logBytes. Pictures:"
    runAndWait "$build/bin/talvex-demo-driver" --proxy "$proxy" --unit "$unit" --pictures "$output" \
        --log "$work/stored.log" "$@"
else
    runAndWait runByHand
fi

echo
echo "What the unit noted:"
sed -e '/^log-part /d' -e 's/^/    /' "$work/unit.journal"
if ! cmp "$work/unit.image" "$work/root/bin/HB4.sb"; then
    echo "The unit does not hold the image that the server sent." >&2
    exit 1
fi
echo "The unit holds the server's image, byte for byte ($(stat -c %s "$work/unit.image") bytes)."
if [ "$signed" = yes ]; then
    echo "What the program asked the server for:"
    sed -e 's/^GET \([^ ]*\) .*/    \1/' "$work/access.log"
    if ! grep -q '^GET [^ ]*/versions.txt.minisig ' "$work/access.log"; then
        echo "The program did not ask for the catalogue's signature." >&2
        exit 1
    fi
fi
if [ "$auto" = yes ]; then
    if ! cmp "$work/stored.log" "$work/unit.log"; then
        echo "The stored log is not the one that the unit sent." >&2
        exit 1
    fi
    echo "The stored log is the unit's, byte for byte ($logBytes bytes)."
fi
