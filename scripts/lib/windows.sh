# shellcheck shell=bash
# The steps of scripts/windows.sh, one function each: step_<name>, with _ for -. Sourced, not run, from the project's
# folder. It needs the array options, of the program's build.
# shellcheck disable=SC2034,SC2154  # the lists are for the script that sources this, the options come from there
# shellcheck source=scripts/lib/packages.sh
source scripts/lib/packages.sh
# shellcheck source=scripts/lib/sources.sh
source scripts/lib/sources.sh
# shellcheck source=scripts/lib/windows-qt.sh
source scripts/lib/windows-qt.sh
# shellcheck source=scripts/lib/windows-zip.sh
source scripts/lib/windows-zip.sh
# shellcheck source=scripts/lib/windows-wine.sh
source scripts/lib/windows-wine.sh
# shellcheck source=scripts/lib/windows-bus.sh
source scripts/lib/windows-bus.sh

windowsSteps=(qt hidapi program zip reproduce tests in-process whole-program)
windowsLongSteps=(sizes bus)

jobs=$(nproc)
windowsLibraries=$PWD/build-windows-libraries # qt/ and hidapi/, as cmake/mingw64.cmake wants them
windowsProgram=$PWD/build-windows
windowsTests=$PWD/build-windows-tests
winePrefix=$windowsLibraries/prefix # to copy
zips=$PWD/artifacts/windows
pictures=$zips/pictures
windowsOnlyTests=(tst_heldfiles)
junit=$PWD/artifacts/test/junit
export CMAKE_CXX_COMPILER_LAUNCHER=ccache
export CCACHE_SLOPPINESS=pch_defines,time_macros # or it keeps nothing that was compiled with a precompiled header
# Most tests wait most of the time.
testJobs=$((3 * jobs))

# The sources of hidapi 0.15.0 lie in a package of npm's. Debian's 0.13.1 will not do: on Windows its hid_write may
# report a failure for what it has written, and the packet would be sent twice.
hidapiPackage=node-hid
hidapiPackageVersion=3.4.0
hidapiDigest=Br7EO3bJARAJBdtcsGzF/Vs5TjfbkaMdglqLQ+Rk9GOGgVqv5DxYUVH5znLerJU+OfBWw8sd552Ujcprz1bG9g==
hidapiVersion=0.15.0

step_packages() {
    installMissing "${buildPackages[@]}" "${stagePackages[@]}" "${guidePackages[@]}" "${windowsPackages[@]}" || return
    command -v npm > /dev/null || installMissing npm
}

step_qt() {
    keepQt && unpackQt "$windowsLibraries"
}

# Builds Qt as long as nobody else wants the processors. The kernel shares them out by session.
step_ahead() {
    # shellcheck disable=SC2016  # the inner shell's $
    setsid bash -c '
        echo 19 > /proc/self/autogroup
        renice -n 19 "$$" > /dev/null
        source scripts/lib/windows-qt.sh
        keepQt' 2>&1 &
    wait "$!"
}

# fetchHidapi: puts the package into the cache, unless it is there.
fetchHidapi() {
    local kept=$qtCache/$hidapiPackage-$hidapiPackageVersion.tgz fetched
    if [ -e "$kept" ] && hasDigest "$kept"; then
        return 0
    fi
    mkdir -p "$qtCache" || return
    find "$qtCache" -maxdepth 1 -name 'fetching.*' -mmin +60 -exec rm -rf {} + # whoever made these was ended
    fetched=$(mktemp -d "$qtCache/fetching.XXXXXX") &&
        (cd "$fetched" && npm pack --silent "$hidapiPackage@$hidapiPackageVersion") > /dev/null || return
    if ! hasDigest "$fetched/${kept##*/}"; then
        echo "$hidapiPackage@$hidapiPackageVersion is not what it was." >&2
        rm -rf "$fetched"
        return 1
    fi
    mv "$fetched/${kept##*/}" "$kept" && rm -rf "$fetched"
}

hasDigest() {
    [ "$(openssl dgst -sha512 -binary "$1" | base64 -w 0)" = "$hidapiDigest" ]
}

step_hidapi() {
    local folder=$windowsLibraries/hidapi
    rm -rf "$folder" && mkdir -p "$folder" && fetchHidapi &&
        tar -C "$folder" -xf "$qtCache/$hidapiPackage-$hidapiPackageVersion.tgz" package/hidapi &&
        [ "$(cat "$folder/package/hidapi/VERSION")" = "$hidapiVersion" ] &&
        cmake -S "$folder/package/hidapi" -B "$folder/build" -G Ninja -DCMAKE_BUILD_TYPE=Release \
            -DCMAKE_TOOLCHAIN_FILE="$PWD/cmake/mingw64.cmake" -DTALVEX_WINDOWS_PREFIX="$windowsLibraries" \
            -DCMAKE_PROJECT_INCLUDE="$PWD/packaging/windows/hidapi.cmake" -DCMAKE_INSTALL_PREFIX="$folder" \
            -DCMAKE_C_FLAGS="-ffile-prefix-map=$folder=." -DHIDAPI_WITH_TESTS=OFF > /dev/null &&
        cmake --build "$folder/build" -j "$jobs" && cmake --install "$folder/build" > /dev/null &&
        mv "$folder"/package/hidapi/LICENSE*.txt "$folder" && rm -rf "$folder/package" "$folder/build"
}

step_program() {
    # "Fresh", so that no option of an earlier run is left.
    cmake --fresh --preset windows "${options[@]}" > /dev/null && cmake --build --preset windows -j "$jobs"
}

step_zip() {
    local zip
    zip=$(zipName "$windowsProgram").zip && rm -f "$zips"/*.zip &&
        packZip "$windowsProgram" "$work/packed" && checkZip "$work/packed/$zip" &&
        mkdir -p "$zips" && cp "$work/packed/$zip" "$zips" && (cd "$zips" && sha256sum "$zip")
}

# Builds and packs once more, from a copy in another folder: the bytes have to be the same.
step_reproduce() {
    local copy=$work/copy zip
    zip=$(zipName "$windowsProgram").zip && copySources "$copy" || return
    if ! SOURCE_DATE_EPOCH=$(timeOfFiles) CCACHE_DISABLE=1 "$copy/scripts/windows.sh" --no-install "${options[@]}" \
        qt hidapi program zip > "$work/copy.log" 2>&1; then
        cat "$work/copy.log"
        return 1
    fi
    cmp "$zips/$zip" "$copy/artifacts/windows/$zip"
}

# driverFolder: where the tests are built that drive the program from outside. They know the update server's name as
# well: with options, their folder is not the one that scripts/test.sh uses.
driverFolder() {
    if [ ${#options[@]} -eq 0 ]; then
        echo "$PWD/build-test"
    else
        echo "$PWD/build-test-options"
    fi
}

# buildDriver TARGET
buildDriver() {
    local driver
    driver=$(driverFolder)
    [ ${#options[@]} -eq 0 ] || rm -f "$driver/CMakeCache.txt" # with the options of an earlier run
    cmake --preset test -B "$driver" "${options[@]}" > /dev/null && cmake --build "$driver" --target "$1" -j "$jobs"
}

# Builds what runs under Wine, what drives it from outside, and the prefix.
step_tests() {
    cmake --preset windows-tests > /dev/null && cmake --build --preset windows-tests -j "$jobs" &&
        buildDriver windows-tests && step_prefix
}

# The prefix that every run under Wine copies.
step_prefix() {
    find "$windowsLibraries" -maxdepth 1 -name "${winePrefix##*/}-??????" -mmin +90 -exec rm -rf {} + # of ended tests
    prefixIsMade "$winePrefix" || makePrefix "$winePrefix"
}

# testsIn BUILD: the names of its in-process tests, sorted.
testsIn() {
    ctest --test-dir "$1" -N -L in-process | sed -n 's/^ *Test *#[0-9]*: //p' | LC_ALL=C sort
}

# checkTestList: built are the tests that only Windows has, and every in-process test of this system but those that
# tests/windows/not-built.txt gives a reason for; it gives none for a test that there is not.
checkTestList() {
    local all notBuilt=$work/not-built built=$work/built failed=0
    all=$(testsIn "$(driverFolder)")
    testsIn "$windowsTests" > "$built"
    grep -v '^#' tests/windows/not-built.txt | cut -d ' ' -f 1 | LC_ALL=C sort > "$notBuilt"
    if LC_ALL=C comm -13 <(echo "$all") "$notBuilt" | grep . >&2; then
        echo "These tests of tests/windows/not-built.txt do not exist." >&2
        failed=1
    fi
    LC_ALL=C comm -23 <(echo "$all") "$notBuilt" | cat - <(printf '%s\n' "${windowsOnlyTests[@]}") |
        LC_ALL=C sort > "$work/wanted"
    if ! diff "$work/wanted" "$built" > "$work/difference"; then
        echo "Not built, and tests/windows/not-built.txt does not say why (<), or built in spite of it (>):" >&2
        grep '^[<>]' "$work/difference" >&2
        failed=1
    fi
    echo "In process: $(wc -l < "$built") tests, of them ${#windowsOnlyTests[@]} for Windows only." \
        "Of the $(wc -l <<< "$all") of this system these are not built:"
    grep -v '^#' tests/windows/not-built.txt
    return "$failed"
}

# underWine STEP BUILD LABEL [COMMAND...]: runs the tests of a build folder that have the label, by a command if there is
# one; and says what they left out. A test that fails has a second attempt, because Wine 8 is not Windows: now and then it
# draws a box too small for its buttons, or a program waits in vain. Which tests needed it is said, too.
underWine() {
    local result=0
    TALVEX_WINE_PREFIX=$winePrefix "${@:4}" ctest --test-dir "$2" -L "^$3\$" --no-tests=error --output-on-failure \
        --repeat until-pass:2 --output-junit "$junit/windows-$1.xml" -j "$testJobs" | tee "$work/$1.log" || result=1
    sed -n 's/^.*Test *#[0-9]*: \([^ ]*\) .*\*\*\*.*/Failed at least once: \1/p' "$work/$1.log" | sort -u
    tr -d '\r' < "$2/Testing/Temporary/LastTest.log" | grep -E '^(Left out: |SKIP )' || true
    return "$result"
}

step_in_process() {
    checkTestList &&
        TALVEX_WINE_PATH=$windowsTests/bin:$(runtimeFolders | grep -v hidapi | paste -sd :) \
            underWine in-process "$windowsTests" in-process onScreen
}

# unpackZip FOLDER: the program from the zip, below the folder; prints where.
unpackZip() {
    local name
    name=$(zipName "$windowsProgram") && rm -rf "$1" && mkdir "$1" && unzip -q "$zips/$name.zip" -d "$1" && echo "$1/$name"
}

# fromZip STEP LABEL: the program from the zip, with the virtual unit in the place of the HID library.
fromZip() {
    local unpacked driver
    unpacked=$(unpackZip "$work/zip") && driver=$(driverFolder) || return
    TALVEX_TEST_WINDOWS=$unpacked TALVEX_WINDOWS_BESIDE=$windowsTests/tests/windows/probed \
        TALVEX_WINDOWS_EXPLORER=$windowsTests/bin/talvex-explorer.exe TALVEX_TEST_ARTIFACTS=$pictures \
        underWine "$1" "$driver" "$2"
}

step_whole_program() {
    rm -rf "$pictures" && fromZip whole-program windows
}

# What one size of the image is enough for otherwise, with all of them.
step_sizes() {
    fromZip sizes windows-sizes
}
