#!/bin/bash
# Checks the project: builds the program as it is shipped and the tests, checks the format and the code, runs the tests.
# Prints a table of all steps at the end; exit code 0: all good.
set -euo pipefail

cd "$(dirname "$(realpath "$0")")/.."
# shellcheck source=scripts/lib/steps.sh
source scripts/lib/steps.sh

usage() {
    cat << END
usage: scripts/test.sh [--all] [--no-install] [STEP...]
  without a STEP  all of: ${usualSteps[*]}
  quick           the loop while you work: ${quickSteps[*]}
  --all           the long ones too: ${longSteps[*]}
  --no-install    say which packages are missing, install none
Also: coverage. What a step needs is built first. Results for tools are kept in $junit.
END
}

results=()
failed=0

# run STEP: one step; a line of its result for the table.
run() {
    local step=$1 result=good
    echo "== $step"
    SECONDS=0
    "step_${step//-/_}" || { result=FAILED && failed=1; }
    echo "== $step: $result, $SECONDS s"
    results+=("$(printf '%-18s %-8s %6d s' "$step" "$result" "$SECONDS")")
}

steps=()
leftOut="${longSteps[*]} (scripts/test.sh --all)"
for argument in "$@"; do
    case $argument in
        --all) steps=("${usualSteps[@]}" "${longSteps[@]}") && leftOut= ;;
        --no-install) export TALVEX_NO_INSTALL=1 ;;
        --help) usage && exit 0 ;;
        quick) steps+=("${quickSteps[@]}") && leftOut="all but the quick loop" ;;
        *)
            if ! declare -F "step_${argument//-/_}" > /dev/null; then
                echo "scripts/test.sh: there is no step '$argument'" >&2
                usage >&2
                exit 2
            fi
            steps+=("$argument") && leftOut="all but what was asked for"
            ;;
    esac
done
if [ ${#steps[@]} -eq 0 ]; then
    steps=("${usualSteps[@]}")
fi

mkdir -p "$junit"
began=$(date +%s)
run packages
if [ "$failed" -eq 0 ]; then
    for step in "${steps[@]}"; do
        run "$step"
    done
fi

echo
printf '%s\n' "${results[@]}"
printf '%-27s %6d s\n' "in all" $(($(date +%s) - began))
if [ -n "$leftOut" ]; then
    echo "Left out: $leftOut."
fi
if [ "$failed" -ne 0 ]; then
    echo "FAILED"
    exit 1
fi
echo "All good."
