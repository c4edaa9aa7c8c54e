#!/bin/bash
# Checks the project: builds the program as shipped and the tests, checks format and code, and runs the tests. Prints a
# table of all steps at the end; exit code 0: all passed.
set -euo pipefail

cd "$(dirname "$(realpath "$0")")/.."
# shellcheck source=scripts/lib/steps.sh
source scripts/lib/steps.sh

usage() {
    cat << END
usage: scripts/test.sh [--all] [--no-install] [STEP...]
  without a STEP  all of: ${usualSteps[*]}
  quick           for use while you work: ${quickSteps[*]}
  --all           also the long ones: ${longSteps[*]}; and every model on the USB bus with both flavours
  --no-install    only say which packages are missing
There is also a step "coverage". Each step first builds what it needs. Machine-readable results are in $junit.
END
}

work=$(mktemp -d)
cleanUp() {
    local group
    for group in $(jobs -p); do
        kill -- "-$group" 2> /dev/null || true
    done
    rm -rf "$work"
}
trap cleanUp EXIT
table=$work/table
failed=0

# run STEP: runs one step and adds its result to the table. Returns 1 if it failed.
run() {
    local step=$1 result=good
    echo "== $step"
    SECONDS=0
    "step_${step//-/_}" || result=FAILED
    echo "== $step: $result, $SECONDS s"
    printf '%-18s %-8s %6d s\n' "$step" "$result" "$SECONDS" >> "$table"
    [ "$result" = good ]
}

# runBeside STEP...: runs the steps in parallel, as most of their tests wait; output is shown once a step has ended.
runBeside() {
    local step pids=()
    set -m # one process group each, to end them by
    for step in "$@"; do
        run "$step" > "$work/$step" 2>&1 &
        pids+=($!)
    done
    set +m
    for step in "$@"; do
        wait "${pids[0]}" || failed=1
        pids=("${pids[@]:1}")
        cat "$work/$step"
    done
}

steps=()
leftOut="${longSteps[*]}, half of the models with each flavour on the USB bus (scripts/test.sh --all)"
for argument in "$@"; do
    case $argument in
        --all)
            steps=("${usualSteps[@]}" "${longSteps[@]}") && leftOut=
            export TALVEX_USB_ALL_MODELS=ON
            ;;
        --no-install) export TALVEX_NO_INSTALL=1 ;;
        --help) usage && exit 0 ;;
        quick) steps+=("${quickSteps[@]}") && leftOut="everything but the quick steps" ;;
        *)
            for step in ${argument//+/ }; do
                if ! declare -F "step_${step//-/_}" > /dev/null; then
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
began=$(date +%s)
run packages || exit 1
for step in "${steps[@]}"; do
    IFS=+ read -ra beside <<< "$step"
    if [ ${#beside[@]} -gt 1 ]; then
        runBeside "${beside[@]}"
    else
        run "$step" || failed=1
    fi
    if [ "$failed" -ne 0 ] && [ "$step" = tests ]; then
        break # there is nothing to run
    fi
done

echo
cat "$table"
printf '%-27s %6d s\n' "total" $(($(date +%s) - began))
if [ -n "$leftOut" ]; then
    echo "Left out: $leftOut."
fi
if [ "$failed" -ne 0 ]; then
    echo "FAILED"
    exit 1
fi
echo "All good."
