#!/bin/bash
# Builds, packs and tests the program for 64-bit Windows, on Debian: with MinGW, and under Wine. Prints a table of all
# steps at the end; exit code 0: all passed.
set -euo pipefail

cd "$(dirname "$(realpath "$0")")/.."
# shellcheck source=scripts/lib/windows.sh
source scripts/lib/windows.sh
# shellcheck source=scripts/lib/table.sh
source scripts/lib/table.sh

usage() {
    cat << END
usage: scripts/windows.sh [--all] [--bus] [--ahead] [--no-install] [-DOPTION=VALUE...] [STEP...]
  without a STEP  all of: ${windowsSteps[*]}
  --all           also the long ones: ${windowsLongSteps[*]}
  --bus           only the program with the real HID library on a USB bus (step bus), and what that takes
  --ahead         only make what is kept in $qtCache, at the lowest priority: to be run
                  beside something else, as it takes 11 minutes on two idle processors
  --no-install    only say which packages are missing
  -D...           options of the program's build, such as the name of a vendor's server (README.md); but there is no
                  catalogue key, because Debian has no libsodium for Windows
A step needs what those before it in the list have made. The zip is in $zips.
END
}

steps=()
options=()
leftOut="${windowsLongSteps[*]} (scripts/windows.sh --all)"
for argument in "$@"; do
    case $argument in
        --all) steps=("${windowsSteps[@]}" "${windowsLongSteps[@]}") && leftOut= ;;
        --bus) steps=(qt hidapi program zip bus) && leftOut="everything but the steps asked for" ;;
        --ahead) steps=(ahead) && leftOut="everything else" ;;
        --no-install) export TALVEX_NO_INSTALL=1 ;;
        -DTALVEX_CATALOGUE_KEY*)
            echo "scripts/windows.sh: no catalogue key: Debian has no libsodium for Windows" >&2
            exit 2
            ;;
        -D*) options+=("$argument") ;;
        --help) usage && exit 0 ;;
        *)
            if ! isStep "$argument"; then
                echo "scripts/windows.sh: there is no step '$argument'" >&2
                usage >&2
                exit 2
            fi
            steps+=("$argument") && leftOut="everything but the steps asked for"
            ;;
    esac
done
if [ ${#steps[@]} -eq 0 ]; then
    steps=("${windowsSteps[@]}")
fi

run packages || exit 1
runAll "${steps[@]}"
finish "$leftOut"
