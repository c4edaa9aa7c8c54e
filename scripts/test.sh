#!/bin/bash
# Checks everything: builds the program as it is shipped, the tests, and the tests with sanitizers; checks the format
# and the code; runs all tests, those of the whole program with the shipped executable. Exit code 0: all good.
set -euo pipefail

cd "$(dirname "$(realpath "$0")")/.."
source scripts/lib/packages.sh

jobs=$(nproc)
shipped=build
tests=build-test
sanitized=build-asan
variant=build-variant
threads=build-tsan
evidence=$PWD/$tests/evidence
failures=()

# must NAME COMMAND...: what follows makes no sense without it.
must() {
    local name=$1
    shift
    echo "== $name"
    SECONDS=0
    "$@" || { echo "== $name: FAILED after $SECONDS s"; exit 1; }
    echo "== $name: $SECONDS s"
}

# check NAME COMMAND...: the rest is checked all the same.
check() {
    local name=$1
    shift
    echo "== $name"
    SECONDS=0
    if "$@"; then
        echo "== $name: good, $SECONDS s"
    else
        echo "== $name: FAILED after $SECONDS s"
        failures+=("$name")
    fi
}

sources() {
    local folder folders=()
    for folder in "$@"; do
        if [ -d "$folder" ]; then
            folders+=("$folder")
        fi
    done
    find "${folders[@]}" -name '*.cpp' -o -name '*.h' | sort
}

checkFormat() {
    sources app ui unit update net log virtualunit tests bench fuzz | xargs clang-format --dry-run -Werror
}

checkCode() {
    sources app ui unit update net log | grep '\.cpp$' |
        xargs run-clang-tidy -quiet -p "$tests" -j "$jobs" > "$tests/tidy.log" 2>&1 ||
        { grep -E 'warning:|error:' -A 4 "$tests/tidy.log" || cat "$tests/tidy.log"; return 1; }
}

checkScripts() {
    shellcheck -x scripts/*.sh scripts/lib/*.sh server/*.sh bench/*.sh tests/*/*.sh tests/*/*/*.sh .ci/run
}

buildShipped() {
    cmake -S . -B "$shipped" && cmake --build "$shipped" -j "$jobs"
}

# The other settings of the shipped program, as far as a compiler can tell.
buildVariant() {
    cmake -G Ninja -S . -B "$variant" -DTALVEX_HIDAPI=hidraw -DTALVEX_LOG_FILE=ON -DTALVEX_WERROR=ON &&
        cmake --build "$variant" -j "$jobs" && readelf -d "$variant/bin/talvex-updater" | grep hidapi-hidraw
}

buildTests() {
    cmake -G Ninja -S . -B "$tests" -DCMAKE_BUILD_TYPE=Debug -DTALVEX_TESTS=ON -DTALVEX_WERROR=ON &&
        cmake --build "$tests" -j "$jobs"
}

# Each is named like its target.
inProcessTests() {
    ctest --test-dir "$sanitized" -N -L in-process | sed -n 's/^ *Test *#[0-9]*: //p'
}

buildSanitized() {
    cmake --preset asan && inProcessTests | xargs cmake --build "$sanitized" -j "$jobs" --target talvex-updater
}

runTests() {
    rm -rf "$evidence" && mkdir "$evidence" &&
        TALVEX_RELIABILITY=$evidence TALVEX_TEST_PROGRAM=$PWD/$shipped/bin/talvex-updater \
        TALVEX_TEST_ARTIFACTS=$PWD/artifacts/test ctest --test-dir "$tests" --output-on-failure -j "$jobs"
}

# Its users act in real time: what a starved machine showed otherwise must show twice.
checkReliability() {
    scripts/reliability.py "$evidence" --check && return
    echo "not what docs/reliability.md says: once more, with nothing else running"
    rm -f "$evidence/tst_reliability"
    TALVEX_RELIABILITY=$evidence ctest --test-dir "$tests" -R '^tst_reliability$' --output-on-failure &&
        scripts/reliability.py "$evidence" --check
}

runSanitized() {
    UBSAN_OPTIONS=print_stacktrace=1 ctest --test-dir "$sanitized" -L in-process --output-on-failure -j "$jobs"
}

# The whole program, its virtual library preloaded behind the sanitizer's. Leaks are looked for where no plugin of a
# screen adds its own: by tst_reliability, which runs the program from its main().
runSanitizedProgram() {
    ASAN_OPTIONS=detect_leaks=0:verify_asan_link_order=0 UBSAN_OPTIONS=print_stacktrace=1 \
        TALVEX_TEST_PROGRAM=$PWD/$sanitized/bin/talvex-updater \
        ctest --test-dir "$tests" -R '^program\.(faults|offers|ending|log)$' --output-on-failure -j "$jobs"
}

# The two threads of a log download, where no queue of Qt's lies between them (Debian's Qt is not instrumented).
runThreadSanitized() {
    cmake --preset tsan > "$tests/tsan.log" &&
        cmake --build "$threads" -j "$jobs" --target tst_logfailures tst_virtualhid &&
        TSAN_OPTIONS="suppressions=$PWD/tests/support/tsan.supp halt_on_error=1" QT_QPA_PLATFORM=offscreen \
            "$threads/tests/log/tst_logfailures.dir/tst_logfailures" stopOnAnotherThread &&
        TSAN_OPTIONS="suppressions=$PWD/tests/support/tsan.supp halt_on_error=1" \
            "$threads/tests/virtualunit/tst_virtualhid.dir/tst_virtualhid"
}

must "packages" installMissing "${buildPackages[@]}" "${stagePackages[@]}" "${checkPackages[@]}"
export CMAKE_CXX_COMPILER_LAUNCHER=ccache
must "shipped program" buildShipped
must "tests" buildTests
check "other settings" buildVariant
check "scripts" checkScripts
check "format" checkFormat
check "code" checkCode
check "all tests" runTests
check "docs/reliability.md" checkReliability
check "sanitized tests, build" buildSanitized
check "sanitized tests" runSanitized
check "sanitized program" runSanitizedProgram
check "sanitized threads" runThreadSanitized
check "fuzzing, a minute" scripts/fuzz.sh 1
check "real USB bus" scripts/usb-test.sh

if [ ${#failures[@]} -gt 0 ]; then
    printf 'FAILED: %s\n' "${failures[@]}"
    exit 1
fi
echo "All good."
