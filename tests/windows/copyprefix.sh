#!/bin/bash
# copyprefix.sh FOLDER: copies the prefix that TALVEX_WINE_PREFIX names (scripts/windows.sh prefix) into a folder on the
# same file system. Nothing writes to the files of the system, 700 MB: links will do. The registry is each copy's own.
set -euo pipefail

model=${TALVEX_WINE_PREFIX:?}
cp -al "$model/." "$1"
for registry in system.reg user.reg userdef.reg; do
    cp --remove-destination "$model/$registry" "$1/$registry"
done
