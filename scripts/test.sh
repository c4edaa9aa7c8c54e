#!/bin/bash
# Checks the project: builds the program as shipped and the tests, checks format and code, and runs the tests. Prints a
# table of all steps at the end; exit code 0: all passed.
set -euo pipefail

cd "$(dirname "$(realpath "$0")")/.."
# shellcheck source=scripts/lib/steps.sh
source scripts/lib/steps.sh
# shellcheck source=scripts/lib/table.sh
source scripts/lib/table.sh

usage() {
    cat << END
usage: scripts/test.sh [--all] [--no-install] [STEP...]
  without a STEP  all of: ${usualSteps[*]}
  quick           for use while you work: ${quickSteps[*]}
  --all           also the long ones: ${longSteps[*]}; and on the USB bus every row with both flavours
  --no-install    only say which packages are missing
There is also a step "coverage". Each step first builds what it needs. Machine-readable results are in $junit.
END
}

steps=()
leftOut="${longSteps[*]}; on the USB bus, with each flavour, half of the models, answers and endings, and images of 1 MB"
leftOut+=" (scripts/test.sh --all)"
for argument in "$@"; do
    case $argument in
        --all)
            steps=("${usualSteps[@]}" "${longSteps[@]}") && leftOut=
            export TALVEX_USB_ALL=ON
            ;;
        --no-install) export TALVEX_NO_INSTALL=1 ;;
        --help) usage && exit 0 ;;
        quick) steps+=("${quickSteps[@]}") && leftOut="everything but the quick steps" ;;
        *)
            for step in ${argument//+/ }; do
                if ! isStep "$step"; then
                    echo "scripts/test.sh: there is no step '$step'" >&2
                    usage >&2
                    exit 2
                fi
            done
            steps+=("$argument") && leftOut="everything but the steps asked for"
            ;;
    esac
done
if [ ${#steps[@]} -eq 0 ]; then
    steps=("${usualSteps[@]}")
fi

mkdir -p "$junit"
run packages || exit 1
runAll "${steps[@]}"
finish "$leftOut"
