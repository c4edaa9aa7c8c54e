#!/bin/bash
# Packs the program for Linux, with the libraries that it needs, as talvex-updater-VERSION-linux-x86_64.tar.gz in
# artifacts/package/, and prints the archive's size and SHA-256. The same sources, built on the same packages of Debian,
# give the same bytes.
set -euo pipefail

usage() {
    cat << 'END'
usage: scripts/package.sh [--check] [-DOPTION=VALUE...]
  -D...    options of the build, such as the name of a vendor's server (README.md)
  --check  also build it a second time elsewhere and compare; update virtual units with it on minimal systems of
           Debian 12 and 13; and measure its start. Needs root, to make these systems. Not for a program with a
           catalogue key: the catalogue that it is updated from is not signed
END
}

cd "$(dirname "$(realpath "$0")")/.."
source scripts/lib/packages.sh

output=$PWD/artifacts/package
mostBytes=45000000
newestGlibc=2.36
wantedFiles=(talvex-updater qt.conf plugins/platforms/libqxcb.so user-guide.html licenses/THIRD-PARTY-NOTICES.txt
    install-for-this-computer.sh share/{version,70-talvex-updater.rules}
    share/{example.talvex.updater.desktop,metainfo/example.talvex.updater.metainfo.xml}
    share/icons/hicolor/{{16x16,24x24,32x32,48x48,64x64,128x128,256x256}/apps/talvex-updater.png,scalable/apps/talvex-updater.svg}
    scripts/{support-report,lib/unitaccess}.sh)

# What was built is all there is: the archive of an earlier version must not pass for this one's.
pack() {
    rm -rf "$output"
    cmake --fresh --preset bundle "${options[@]}" > /dev/null # no option of an earlier run is left
    cmake --build --preset bundle -j "$(nproc)"
    (cd build-bundle && cpack -B "$output" > cpack.log) || { cat build-bundle/cpack.log; return 1; }
    rm -rf "$output/_CPack_Packages"
    archive=$(echo "$output"/*.tar.gz)
}

# programFiles FOLDER: the program, and all libraries and plug-ins.
programFiles() {
    find "$1" -type f \( -name '*.so*' -o -name talvex-updater \)
}

# glibcNeeded FOLDER: the newest version of glibc that something there asks for.
glibcNeeded() {
    programFiles "$1" | xargs objdump -T | grep -oE 'GLIBC_[0-9.]+' | sort -uV | sed -n 's/GLIBC_//;$p'
}

# librariesMissing FOLDER: what something there needs that is neither there nor part of glibc.
librariesMissing() {
    local name
    programFiles "$1" | xargs objdump -p | awk '$1 == "NEEDED" { print $2 }' | sort -u | while read -r name; do
        case $name in
            ld-linux-x86-64.so.2 | libc.so.6 | libdl.so.2 | libm.so.6 | libpthread.so.0 | libresolv.so.2 | librt.so.1) ;;
            *) [ -e "$(echo "$1"/*/lib)/$name" ] || echo "$name" ;;
        esac
    done
}

# filesMissing FOLDER: which of the files are not there that people read, run or install.
filesMissing() {
    local name
    for name in "${wantedFiles[@]}"; do
        [ -s "$(echo "$1"/*)/$name" ] || echo "$name"
    done
}

# inspect: prints what a user has to know of the archive; returns 1 if it is not what was promised.
inspect() {
    local bytes glibc missing work failed=0
    work=$(mktemp -d)
    tar -xzf "$archive" -C "$work"
    bytes=$(stat -c %s "$archive")
    glibc=$(glibcNeeded "$work")
    missing=$(librariesMissing "$work"; filesMissing "$work")
    rm -rf "$work"
    echo "$archive"
    echo "  SHA-256  $(sha256sum < "$archive" | cut -d ' ' -f 1)"
    echo "  size     $bytes bytes, of at most $mostBytes"
    echo "  needs    glibc $glibc, of at most $newestGlibc"
    if [ "$bytes" -gt "$mostBytes" ]; then
        echo "package.sh: the archive is too large" >&2
        failed=1
    fi
    if [ "$(printf '%s\n' "$glibc" "$newestGlibc" | sort -V | tail -n 1)" != "$newestGlibc" ]; then
        echo "package.sh: the archive needs too new a system" >&2
        failed=1
    fi
    if [ -n "$missing" ]; then
        echo "package.sh: the archive lacks ${missing//$'\n'/ }" >&2
        failed=1
    fi
    return "$failed"
}

check=no
options=()
for argument in "$@"; do
    case $argument in
        --check) check=yes ;;
        -D*) options+=("$argument") ;;
        --help) usage && exit 0 ;;
        *) usage >&2 && exit 2 ;;
    esac
done

if [ "$check" = yes ]; then
    # shellcheck source=scripts/lib/packagecheck.sh
    source scripts/lib/packagecheck.sh
    demandCheckable "${options[@]}"
fi
installMissing "${buildPackages[@]}" "${guidePackages[@]}" "${bundlePackages[@]}"
if [ -z "${SOURCE_DATE_EPOCH:-}" ]; then
    SOURCE_DATE_EPOCH=$(git log -1 --format=%ct)
fi
export SOURCE_DATE_EPOCH CMAKE_CXX_COMPILER_LAUNCHER=ccache
pack
inspect
if [ "$check" = yes ]; then
    checkPackage "$archive" "${options[@]}"
fi
