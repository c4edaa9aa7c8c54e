#!/bin/bash
# One whole update, the user pressing everything in mid installation, under Valgrind. JOURNEY is talvex-journey.
# Returns 0 if the unit is updated and Valgrind has found no error and no lost memory.
set -euo pipefail

journey=$1
here=$(dirname "$(realpath "$0")")
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cp "$journey" "$work/journey" # the program keeps its files beside itself

cd "$work"
# Code that is made while it runs (regular expressions) is beyond Valgrind.
QT_ENABLE_REGEXP_JIT=0 QT_QPA_PLATFORM=offscreen TALVEX_TEST_PATIENCE=10 \
    valgrind --quiet --error-exitcode=9 --leak-check=full --show-leak-kinds=definite \
    --errors-for-leak-kinds=definite --num-callers=30 --suppressions="$here/valgrind.supp" \
    ./journey user "presses every control twice, and the log's key" installation | tee output
grep -qx 'unit the unit has the new firmware' output
