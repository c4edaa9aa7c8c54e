#!/bin/bash
# scripts/fuzz.sh MINUTES
# Builds the fuzz targets (clang, libFuzzer, address and undefined-behaviour sanitizers) and runs each for its share of
# MINUTES, one per processor, on its seeds (fuzz/seeds) and on what earlier runs found (build-fuzz/corpus). Prints a
# table; inputs that crash or hang a target are kept in artifacts/fuzz. Exit code 1: there were some.
set -euo pipefail

cd "$(dirname "$(realpath "$0")")/.."
# shellcheck source=scripts/lib/packages.sh
. scripts/lib/packages.sh

if ! [[ ${1-} =~ ^[1-9][0-9]{0,4}$ ]]; then
    echo "usage: scripts/fuzz.sh MINUTES" >&2
    exit 2
fi
minutes=$1
folder=build-fuzz
crashes=$PWD/artifacts/fuzz
targets=(address catalogue changelog logexchange logreader signature transfer)
processors=$(nproc)
seconds=$((minutes * 60 * processors / ${#targets[@]}))
export LSAN_OPTIONS=suppressions=$PWD/fuzz/lsan.supp:print_suppressions=0
export UBSAN_OPTIONS=print_stacktrace=1

build() {
    installMissing "${buildPackages[@]}" "${fuzzPackages[@]}"
    export CMAKE_CXX_COMPILER_LAUNCHER=ccache
    cmake --preset fuzz > /dev/null && cmake --build --preset fuzz -j "$(nproc)"
}

# fuzz TARGET: runs one target; its output goes to its log.
fuzz() {
    local target=$1 dictionary=() corpus=$PWD/$folder/corpus/$1
    if [ -f "fuzz/$target.dict" ]; then
        dictionary=("-dict=fuzz/$target.dict")
    fi
    mkdir -p "$corpus" "$crashes/$target"
    "$folder/fuzz/$target.dir/fuzz_$target" "-max_total_time=$seconds" -timeout=120 -rss_limit_mb=3000 \
        -print_final_stats=1 "-artifact_prefix=$crashes/$target/" "${dictionary[@]}" "$corpus" "fuzz/seeds/$target" \
        > "$folder/fuzz-$target.log" 2>&1
}

# figure TARGET NAME: a figure from the run's final statistics.
figure() {
    sed -n "s/^stat::$2: *//p" "$folder/fuzz-$1.log"
}

# coverage TARGET: the last count of the covered edges and of the features, as libFuzzer reports them.
coverage() {
    sed -n 's/.* cov: \([0-9]*\) ft: \([0-9]*\) .*/\1 \2/p' "$folder/fuzz-$1.log" | tail -n 1
}

# report TARGET: prints its line of the table and what it found. Returns 1 if it found something.
report() {
    local target=$1 cov ft result
    result=$(cat "$folder/fuzz-$target.result")
    read -r cov ft <<< "$(coverage "$target")"
    printf '%-12s %8s %12s %8s %6s %6s %8s\n' "$target" "$seconds" "$(figure "$target" number_of_executed_units)" \
        "$(figure "$target" average_exec_per_sec)" "$cov" "$ft" "$result"
    if [ "$result" -ne 0 ]; then
        tail -n 60 "$folder/fuzz-$target.log"
        echo "kept in $crashes/$target; to repeat: $folder/fuzz/$target.dir/fuzz_$target FILE"
        return 1
    fi
}

build
for target in "${targets[@]}"; do
    while [ "$(jobs -rp | wc -l)" -ge "$processors" ]; do
        wait -n
    done
    { fuzz "$target" && echo 0 || echo 1; } > "$folder/fuzz-$target.result" &
done
wait

found=0
printf '%-12s %8s %12s %8s %6s %6s %8s\n' target seconds executions exec/s cov ft crashes
for target in "${targets[@]}"; do
    report "$target" || found=1
done
exit "$found"
