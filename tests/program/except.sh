#!/bin/bash
# except.sh TEST EXPRESSION: runs a QtTest program without the rows, written "function" or "function:row", that match the
# extended regular expression; says which ones.
set -euo pipefail

all=$("$1" -datatags 2> /dev/null | sed -e 's/^[^ ]* //' -e 's/ __global__ .*//' -e 's/^\([^ ]*\) /\1:/') || {
    echo "except.sh: $1 does not list its rows" >&2
    exit 1
}
mapfile -t rows <<< "$all"
wanted=()
for row in "${rows[@]}"; do
    if [[ $row =~ $2 ]]; then
        echo "Left out: $row"
    else
        wanted+=("$row")
    fi
done
if [ ${#wanted[@]} -eq 0 ]; then
    echo "except.sh: $1 lists no other rows" >&2
    exit 1
fi
exec "$1" "${wanted[@]}"
