#!/bin/bash
# Takes pictures of every stage of the program as users see it: at 100 and 200 %, light and dark, with a large font. The
# demo's driver operates the program; its pictures go to artifacts/pictures/LOOK/, with a contact sheet of each look
# beside that folder. Given names of stages ("problem", "transfer-50-percent"), only their pictures are kept. With
# --guide, takes only those that docs/user-guide.md shows, and puts them into docs/images/guide/.
set -euo pipefail

usage="usage: scripts/pictures.sh [--guide | NAME...]"
guide=no
case ${1:-} in
    --help) echo "$usage" && exit 0 ;;
    --guide) guide=yes && shift ;;
    -*) echo "$usage" >&2 && exit 2 ;;
esac
if [ "$guide" = yes ] && [ $# -gt 0 ]; then
    echo "$usage" >&2
    exit 2
fi

cd "$(dirname "$(realpath "$0")")/.."
source scripts/lib/packages.sh

output=artifacts/pictures
wanted=("$@")
work=$(mktemp -d)
children=()
cleanUp() {
    trap - EXIT INT TERM
    endScreen
    rm -rf "$work"
}
trap cleanUp EXIT
trap 'exit 130' INT
trap 'exit 143' TERM

endScreen() {
    if [ ${#children[@]} -gt 0 ]; then
        kill "${children[@]}" 2> /dev/null || true
        wait "${children[@]}" 2> /dev/null || true
    fi
    children=()
}

# startScreen DPI: starts a screen with a window manager; its name goes to TALVEX_TEST_DISPLAY.
startScreen() {
    local number
    rm -f "$work/display"
    mkfifo "$work/display"
    Xvfb -displayfd 3 -screen 0 1280x1024x24 -nolisten tcp -noreset 3> "$work/display" 2> /dev/null &
    children+=($!)
    read -r number < "$work/display"
    export TALVEX_TEST_DISPLAY=:$number
    echo "Xft.dpi: $1" | xrdb -display "$TALVEX_TEST_DISPLAY" -nocpp -merge -
    DISPLAY=$TALVEX_TEST_DISPLAY openbox --sm-disable 2> /dev/null &
    children+=($!)
    until xprop -display "$TALVEX_TEST_DISPLAY" -root _NET_SUPPORTING_WM_CHECK | grep -q '#'; do
        sleep 0.1
    done
}

# Settings as a desktop keeps them for its programs: writeSettings FOLDER FONT-POINTS [dark].
writeSettings() {
    mkdir -p "$1"
    {
        printf '[General]\nfont=DejaVu Sans,%s,-1,5,50,0,0,0,0,0\n' "$2"
        if [ "${3:-}" = dark ]; then
            printf '[Colors:Window]\nBackgroundNormal=49,54,59\nForegroundNormal=239,240,241\n'
            printf '[Colors:View]\nBackgroundNormal=35,38,41\nForegroundNormal=239,240,241\n'
            printf '[Colors:Button]\nBackgroundNormal=49,54,59\nForegroundNormal=239,240,241\n'
            printf '[Colors:Selection]\nBackgroundNormal=61,174,233\nForegroundNormal=252,252,252\n'
        fi
    } > "$1/kdeglobals"
}

isWanted() {
    local name
    if [ ${#wanted[@]} -eq 0 ]; then
        return 0
    fi
    for name in "${wanted[@]}"; do
        case $1 in */[0-9][0-9]-"$name".png) return 0 ;; esac
    done
    return 1
}

# take LOOK DPI [DRIVER-OPTION...]
take() {
    local look=$1 dpi=$2 picture kept=()
    shift 2
    rm -rf "${output:?}/$look" "$output/$look.png"
    startScreen "$dpi"
    scripts/demo.sh --auto --output "$output/$look" -- --mishaps "$@"
    endScreen
    for picture in "$output/$look"/*.png; do
        if isWanted "$picture"; then
            kept+=("$picture")
        else
            rm "$picture"
        fi
    done
    if [ ${#kept[@]} -eq 0 ]; then
        echo "No stage has this name: ${wanted[*]}" >&2
        return 1
    fi
    mogrify -bordercolor black -border 1 -trim +repage "${kept[@]}" # the area around the window is black
    montage -label '%t' "${kept[@]}" -tile 4x -geometry '1000x1000>+4+4' "$output/$look.png"
    echo "$output/$look.png"
}

# The stages whose pictures the guide shows, in its order.
stagesOfGuide() {
    grep -oE 'images/guide/[a-z0-9-]+\.png' docs/user-guide.md | sed 's|.*/\(.*\)\.png|\1|'
}

# illustrateGuide LOOK: takes the guide's pictures from those of this look, in few colours, so that they stay small. The
# earlier ones stay until all of them are made.
illustrateGuide() {
    local target=docs/images/guide made=$output/guide stage
    rm -rf "$made"
    mkdir "$made"
    for stage in "${wanted[@]}"; do
        convert "$output/$1"/[0-9][0-9]-"$stage".png -bordercolor black -border 1 -alpha set -fill none \
            -floodfill +0+0 black -shave 1x1 -strip -dither None -colors 64 -define png:compression-level=9 \
            "$made/$stage.png"
    done
    rm -rf "$target"
    mv "$made" "$target"
    du -bc "$target"/*.png
}

# asDesktop FOLDER: the driver's options for a program that reads its settings from there.
asDesktop() {
    printf '%s\n' --set XDG_CURRENT_DESKTOP=KDE --set KDE_SESSION_VERSION=5 --set "XDG_CONFIG_HOME=$1"
}

installMissing "${buildPackages[@]}" "${stagePackages[@]}" "${picturePackages[@]}"
if [ "$guide" = yes ]; then
    mapfile -t wanted < <(stagesOfGuide)
    take light-100 96
    illustrateGuide light-100
    exit
fi
writeSettings "$work/dark" 10 dark
writeSettings "$work/large" 18
mapfile -t dark < <(asDesktop "$work/dark")
mapfile -t large < <(asDesktop "$work/large")
take light-100 96
take light-200 192
take dark-100 96 "${dark[@]}"
take dark-200 192 "${dark[@]}"
take large-font-100 96 "${large[@]}"
