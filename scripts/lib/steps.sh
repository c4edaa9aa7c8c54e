# shellcheck shell=bash
# The steps of scripts/test.sh, one function each: step_<name>, with _ for -. Sourced, not run, from the project's
# folder. Every build folder belongs to a preset (CMakePresets.json).
# shellcheck disable=SC2034  # the lists are for the script that sources this
# shellcheck source=scripts/lib/packages.sh
source scripts/lib/packages.sh
# shellcheck source=scripts/lib/signing.sh
source scripts/lib/signing.sh

# Steps joined by + run in parallel, once what they need has been built.
usualSteps=(shipped format scripts tests in-process+program+code threads+fuzz+usb)
longSteps=(sanitized-program)
quickSteps=(shipped format quick-in-process quick-program)

jobs=$(nproc)
junit=$PWD/artifacts/test/junit
export CMAKE_CXX_COMPILER_LAUNCHER=ccache
export CCACHE_SLOPPINESS=pch_defines,time_macros # or it keeps nothing that was compiled with a precompiled header
export UBSAN_OPTIONS=print_stacktrace=1
# A busy test takes three of these, any other takes one (tests/CMakeLists.txt).
testJobs=$((4 * jobs))

# build PRESET OPTION...: configures and builds a preset, once per run.
declare -A built=()
build() {
    if [ -n "${built[$1]:-}" ]; then
        return 0
    fi
    cmake --preset "$1" "${@:2}" > /dev/null && cmake --build --preset "$1" -j "$jobs" && built[$1]=yes
}

# buildSigned: the program with a key of the build folder's own.
buildSigned() {
    local key
    key=$(signingKey build-signed) && build signed "-DTALVEX_CATALOGUE_KEY=$key"
}

# runTests STEP FOLDER ARGUMENT...: runs the tests of a build folder that the arguments select.
runTests() {
    ctest --test-dir "$2" --no-tests=error --output-on-failure --output-junit "$junit/$1.xml" -j "$testJobs" "${@:3}"
}

# sources PATTERN...: what git tracks or would add.
sources() {
    git ls-files --cached --others --exclude-standard -- "$@"
}

# Also what only some steps need: when they run in parallel, only one of them could install.
step_packages() {
    local needed=("${buildPackages[@]}" "${stagePackages[@]}" "${checkPackages[@]}" "${guidePackages[@]}")
    [[ ${steps[*]:-} != *fuzz* ]] || needed+=("${fuzzPackages[@]}")
    [[ ${steps[*]:-} != *usb* ]] || needed+=("${guestPackages[@]}")
    installMissing "${needed[@]}"
}

step_shipped() {
    cmake -S . -B build && cmake --build build -j "$jobs" && built[shipped]=yes
}

step_format() {
    sources '*.cpp' '*.h' | xargs clang-format --dry-run -Werror && scripts/check-includes.sh
}

step_scripts() {
    sources '*.sh' .ci/run | xargs shellcheck -x && scripts/check-docs.sh && scripts/mutate.sh --check &&
        packaging/icon/make-icons.sh --check && scripts/check-guide.sh &&
        desktop-file-validate packaging/linux/*.desktop && appstreamcli validate --no-net packaging/linux/*.metainfo.xml
}

step_tests() {
    build asan && build hidraw && buildSigned && build test
}

# clang-tidy spends most of its time in the headers, so it gets the sources several at a time, as headers of a file that
# includes them. One of them is compiled without a catalogue key only; clang-tidy takes the flags of its neighbours for it.
step_code() {
    local report=$junit/../tidy.log key
    key=$(signingKey build-tidy) && build tidy "-DTALVEX_CATALOGUE_KEY=$key" || return
    if ! {
        run-clang-tidy -quiet -p build-tidy -j "$jobs" -extra-arg=-Xclang -extra-arg=-analyzer-opt-analyze-headers \
            'Unity|net/cataloguekey_' &&
            clang-tidy -quiet -p build-tidy net/cataloguekey_none.cpp
    } > "$report" 2>&1 || ! grep -q 'talvex-core.*Unity' "$report"; then
        grep -E 'warning:|error:' -A 4 "$report" || cat "$report"
        return 1
    fi
}

step_in_process() {
    build asan && runTests in-process build-asan -L in-process
}

step_quick_in_process() {
    build asan && runTests quick-in-process build-asan -L in-process -LE busy
}

step_program() {
    build shipped && buildSigned && build test && runTests program build-test -L program
}

step_quick_program() {
    build shipped && build test && runTests quick-program build-test -L program -L quick
}

# The whole program with the sanitizers; the virtual library is preloaded after the sanitizers' own. Leaks are left to
# tst_reliability, which runs the program from its main() without a screen's plugin, which leaks too. The program with
# a key (program.signed) always has the sanitizers.
step_sanitized_program() {
    build test && build asan && cmake --build build-asan -j "$jobs" --target talvex-updater &&
        ASAN_OPTIONS=detect_leaks=0:verify_asan_link_order=0 TALVEX_TEST_PROGRAM=$PWD/build-asan/bin/talvex-updater \
            runTests sanitized-program build-test -L program -E '^(program.shipped|program.signed|reliability.memcheck)$'
}

# The two threads of a log download, without one of Qt's queues between them (Debian's Qt is not instrumented).
step_threads() {
    build tsan &&
        TSAN_OPTIONS="suppressions=$PWD/tests/support/tsan.supp halt_on_error=1" QT_QPA_PLATFORM=offscreen \
            build-tsan/tests/log/tst_logfailures.dir/tst_logfailures stopOnAnotherThread &&
        TSAN_OPTIONS="suppressions=$PWD/tests/support/tsan.supp halt_on_error=1" \
            build-tsan/tests/virtualunit/tst_virtualhid.dir/tst_virtualhid
}

step_fuzz() {
    scripts/fuzz.sh 1
}

step_usb() {
    scripts/usb-test.sh
}

# Which lines of the product the in-process tests reach.
step_coverage() {
    installMissing gcovr && build coverage &&
        find build-coverage -name '*.gcda' -delete &&
        runTests coverage build-coverage -L in-process &&
        gcovr --root . --object-directory build-coverage --filter '(app|base|log|net|ui|unit|update|vendor)/' \
            --exclude '.*/build-.*' --txt "$junit/../coverage.txt" --print-summary &&
        cat "$junit/../coverage.txt"
}
