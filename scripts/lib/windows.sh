# shellcheck shell=bash
# The steps of scripts/windows.sh, one function each: step_<name>, with _ for -. Sourced, not run, from the project's
# folder.
# shellcheck disable=SC2034  # the lists are for the script that sources this
# shellcheck source=scripts/lib/packages.sh
source scripts/lib/packages.sh
# shellcheck source=scripts/lib/windows-qt.sh
source scripts/lib/windows-qt.sh
# shellcheck source=scripts/lib/windows-zip.sh
source scripts/lib/windows-zip.sh
# shellcheck source=scripts/lib/windows-wine.sh
source scripts/lib/windows-wine.sh

windowsSteps=(qt hidapi program zip tests in-process whole-program)
windowsLongSteps=()

jobs=$(nproc)
windowsLibraries=$PWD/build-windows-libraries # qt/ and hidapi/, as cmake/mingw64.cmake wants them
windowsProgram=$PWD/build-windows
windowsTests=$PWD/build-windows-tests
winePrefix=$windowsLibraries/prefix # to copy
zips=$PWD/artifacts/windows
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
    mkdir -p "$qtCache" && fetched=$(mktemp -d "$qtCache/fetching.XXXXXX") &&
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
    cmake --preset windows > /dev/null && cmake --build --preset windows -j "$jobs"
}

# Packs twice, from two folders: the bytes have to be the same.
step_zip() {
    local first=$work/first again=$work/again/below zip
    packZip "$windowsProgram" "$first" && packZip "$windowsProgram" "$again" || return
    zip=$(basename "$first"/*.zip)
    if ! cmp "$first/$zip" "$again/$zip"; then
        echo "Packed twice, the zip differs." >&2
        return 1
    fi
    checkZip "$first/$zip" && mkdir -p "$zips" && cp "$first/$zip" "$zips" && (cd "$zips" && sha256sum "$zip")
}

# Builds what runs under Wine, what drives it from outside, and the prefix.
step_tests() {
    cmake --preset windows-tests > /dev/null && cmake --build --preset windows-tests -j "$jobs" &&
        cmake --preset test > /dev/null && cmake --build --preset test-windows -j "$jobs" && step_prefix
}

# The prefix that every run under Wine copies.
step_prefix() {
    [ -d "$winePrefix" ] || makePrefix "$winePrefix"
}

# checkTestList: every in-process test is built, or has its reason in tests/windows/not-built.txt; none has both.
checkTestList() {
    local name failed=0 total=0 built
    built=$(ctest --test-dir "$windowsTests" -N -L in-process | sed -n 's/^ *Test *#[0-9]*: //p')
    while read -r name; do
        total=$((total + 1))
        if grep -qx "$name" <<< "$built" && grep -q "^$name " tests/windows/not-built.txt; then
            echo "$name is built, though tests/windows/not-built.txt has it." >&2
            failed=1
        elif ! grep -qx "$name" <<< "$built" && ! grep -q "^$name " tests/windows/not-built.txt; then
            echo "$name is not built, and tests/windows/not-built.txt does not say why." >&2
            failed=1
        fi
    done < <(ctest --test-dir build-test -N -L in-process | sed -n 's/^ *Test *#[0-9]*: //p')
    echo "In process: $(wc -l <<< "$built") tests of $total. Not built:"
    grep -v '^#' tests/windows/not-built.txt
    return "$failed"
}

step_in_process() {
    checkTestList &&
        TALVEX_WINE_PREFIX=$winePrefix TALVEX_WINE_PATH=$windowsTests/bin:$(runtimeFolders | grep -v hidapi | paste -sd :) \
            onScreen ctest --test-dir "$windowsTests" -L in-process --no-tests=error --output-on-failure \
            --output-junit "$junit/windows-in-process.xml" -j "$testJobs"
}

# The program from the zip, with the virtual unit in the place of the HID library.
step_whole_program() {
    local unpacked=$work/zip
    rm -rf "$unpacked" && mkdir "$unpacked" && unzip -q "$zips"/*.zip -d "$unpacked" || return
    TALVEX_WINE_PREFIX=$winePrefix TALVEX_TEST_WINDOWS=$(echo "$unpacked"/*) \
        TALVEX_WINDOWS_HID=$windowsTests/tests/windows/probed/hidapi.dll \
        TALVEX_WINDOWS_EXPLORER=$windowsTests/bin/talvex-explorer.exe \
        ctest --test-dir build-test -L windows --no-tests=error --output-on-failure \
        --output-junit "$junit/windows-whole-program.xml" -j "$testJobs"
}
