# shellcheck shell=bash
# Runs steps, one function each: step_<name>, with _ for -; and shows a table of them. Sourced, not run.
# shellcheck disable=SC2034  # failed is for the script that sources this

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
began=$(date +%s)

# isStep NAME
isStep() {
    declare -F "step_${1//-/_}" > /dev/null
}

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

# runAll STEP...: runs the steps; those joined by + in parallel. Stops where there is nothing left to run: when a step
# "tests", which builds them, has failed.
runAll() {
    local step beside
    for step in "$@"; do
        IFS=+ read -ra beside <<< "$step"
        if [ ${#beside[@]} -gt 1 ]; then
            runBeside "${beside[@]}"
        elif ! run "$step"; then
            failed=1
            [ "$step" != tests ] || break
        fi
    done
}

# finish LEFTOUT: shows the table and what was left out, and ends the script.
finish() {
    echo
    cat "$table"
    printf '%-27s %6d s\n' "total" $(($(date +%s) - began))
    if [ -n "$1" ]; then
        echo "Left out: $1."
    fi
    if [ "$failed" -ne 0 ]; then
        echo "FAILED"
        exit 1
    fi
    echo "All good."
}
