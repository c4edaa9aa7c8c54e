#!/bin/bash
# Returns 0 if the results in DIRECTORY say that the row NAME ("tst_thing::function(row)") has passed.
set -euo pipefail

directory=$1
name=$2
if grep -qxF "PASS   : $name" "$directory"/*.txt; then
    exit 0
fi
grep -hF -A 25 " : $name" "$directory"/*.txt || echo "$name did not run"
exit 1
