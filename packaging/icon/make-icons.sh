#!/bin/bash
# Makes the icon's pictures from talvex-updater.svg: a PNG of each size, the .ico that a Windows program carries, the
# .icns of a Mac's bundle, and the pixels that the program gives its window (app/icon.qrc) as bytes in the order RGBA,
# because reading a PNG makes Qt load every plug-in for pictures at the start. They are committed, so that building the
# program needs no renderer. With --check, only says which of them are missing or not of their size (exit code 1): two
# renderers never give the same bytes.
# Debian's packages: librsvg2-bin, icoutils, icnsutils, imagemagick; for --check icoutils.
set -euo pipefail

cd "$(dirname "$(realpath "$0")")"
name=talvex-updater
pngSizes=(16 24 32 48 64 128 256)
icoSizes=(16 32 48 256)
icnsSizes=(16 32 48 128 256)
windowSizes=(16 32 48 128)

# widthAndHeight FILE: those of a PNG, which follow its signature.
widthAndHeight() {
    od -An -tu4 --endian=big -j16 -N8 "$1" | xargs
}

check() {
    local size failed=0 found
    for size in "${pngSizes[@]}"; do
        if [ "$(widthAndHeight "$name-$size.png" 2> /dev/null)" != "$size $size" ]; then
            echo "packaging/icon/$name-$size.png is missing or not of that size; make-icons.sh makes it." >&2
            failed=1
        fi
    done
    for size in "${windowSizes[@]}"; do
        if [ "$(stat -c %s "$name-$size.rgba" 2> /dev/null)" != $((4 * size * size)) ]; then
            echo "packaging/icon/$name-$size.rgba is missing or not of that size; make-icons.sh makes it." >&2
            failed=1
        fi
    done
    found=$(icotool --list "$name.ico" 2> /dev/null | sed -n 's/.*--width=\([0-9]*\) --height=\1 .*/\1/p' | xargs)
    if [ "$found" != "${icoSizes[*]}" ]; then
        echo "packaging/icon/$name.ico does not hold the sizes ${icoSizes[*]}; make-icons.sh makes it." >&2
        failed=1
    fi
    if [ "$(head -c4 "$name.icns" 2> /dev/null)" != icns ]; then
        echo "packaging/icon/$name.icns is missing; make-icons.sh makes it." >&2
        failed=1
    fi
    return "$failed"
}

make() {
    local size pictures=()
    for size in "${pngSizes[@]}"; do
        rsvg-convert --width "$size" --height "$size" --output "$name-$size.png" "$name.svg"
    done
    for size in "${windowSizes[@]}"; do
        convert "$name-$size.png" -depth 8 "RGBA:$name-$size.rgba"
    done
    for size in "${icoSizes[@]}"; do
        case $size in
            256) pictures+=("--raw=$name-$size.png") ;; # as it is: a bitmap would take 256 KiB
            *) pictures+=("$name-$size.png") ;;
        esac
    done
    icotool --create --output "$name.ico" "${pictures[@]}"
    pictures=("${icnsSizes[@]/#/$name-}")
    png2icns "$name.icns" "${pictures[@]/%/.png}" > /dev/null
}

case ${1:-} in
    "") make && check ;;
    --check) check ;;
    *) echo "usage: packaging/icon/make-icons.sh [--check]" >&2 && exit 2 ;;
esac
