#!/bin/bash
# except.sh TEST EXPRESSION: runs a QtTest program without the rows, written "function" or "function:row", that match the
# extended regular expression; says which ones.
set -euo pipefail

mapfile -t rows < <("$1" -datatags 2> /dev/null | sed -e 's/^[^ ]* //' -e 's/ __global__ .*//' -e 's/^\([^ ]*\) /\1:/')
wanted=()
for row in "${rows[@]}"; do
    if [[ $row =~ $2 ]]; then
        echo "Left out: $row"
    else
        wanted+=("$row")
    fi
done
[ ${#wanted[@]} -gt 0 ]
exec "$1" "${wanted[@]}"
