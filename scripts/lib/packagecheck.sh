# shellcheck shell=bash
# What scripts/package.sh --check does with its archive. Sourced from the project's folder, not run.
# shellcheck source=scripts/lib/packages.sh
source scripts/lib/packages.sh

minimalSystems=(debian-12:bookworm debian-13:trixie)
someFont=fonts-dejavu-core
userId=1000
# What README.md says of files: those of the program beside it, and the font library's own.
documented='^(updater\.sb(\.bkp)?|[0-9]{4}(-[0-9]{2}){2}(_[0-9]{2}){3}(-2)?_log\.enc'
documented+='|home/musician/\.cache/(fontconfig/([0-9a-f]{32}-le64\.cache-[0-9]+|CACHEDIR\.TAG)?)?)$'
work=
children=()

endCheck() {
    trap - EXIT INT TERM
    local child
    for child in "${children[@]}"; do
        kill "$child" 2> /dev/null || true
    done
    wait
    rm -rf --one-file-system "$work"
}

# timed NAME COMMAND...: runs it, up to the first thing in it that fails, and says how long it took. Its output is shown
# if it fails.
timed() {
    local name=$1 began=$SECONDS code
    shift
    set +e # not "if": what runs there goes on after a failure
    (set -e && "$@") > "$work/$name.log" 2>&1
    code=$?
    set -e
    if [ "$code" -ne 0 ]; then
        cat "$work/$name.log"
        echo "package.sh: failed: $name" >&2
        return 1
    fi
    printf '%-34s %4d s\n' "$name" $((SECONDS - began))
}

# packElsewhere OPTION...: the same sources in another folder, compiled anew.
packElsewhere() {
    mkdir "$work/elsewhere"
    git ls-files -z --cached --others --exclude-standard |
        tar --create --null --files-from=- | tar --extract --directory "$work/elsewhere"
    CCACHE_DISABLE=1 "$work/elsewhere/scripts/package.sh" "$@"
    cmp "$archive" "$work/elsewhere/artifacts/package/${archive##*/}"
}

# makeSystem NAME SUITE: a system with an ordinary user, a font, and nothing that a window needs.
makeSystem() {
    local root=$work/$1
    # shellcheck disable=SC2016  # for the hook's own shell
    mmdebstrap --variant=minbase --include="$someFont" \
        --customize-hook="chroot \"\$1\" useradd --create-home --uid $userId musician" "$2" "$root"
    if find "$root" -xdev \( -name 'libQt5*' -o -name 'libxcb*' -o -name 'libhidapi*' -o -name 'libGL*' \) | grep .; then
        echo "the minimal system has libraries that it should lack" >&2
        return 1
    fi
}

asUser() {
    setpriv --reuid "$userId" --regid "$userId" --clear-groups "$@"
}

# listFiles FOLDER: every file with its size and time, every folder by its name.
listFiles() {
    (cd "$1" && find . -xdev \( -type d -printf '%p/\n' \) -o -printf '%p %s %T@ %l\n') | sort
}

# writeLauncher FILE ROOT DESK PROGRAM: a command that starts PROGRAM in the system at ROOT. It sees this system's X
# server and update server, by the network, and of its files only DESK and what the tests preload.
writeLauncher() {
    local probe=$PWD/build-test
    mkdir -p "$2$probe" "$2$3"
    {
        echo '#!/bin/bash'
        printf 'exec bwrap --die-with-parent --bind %q / --dev /dev --proc /proc --ro-bind %q %q --bind %q %q' \
            "$2" "$probe" "$probe" "$3" "$3"
        printf ' --setenv HOME /home/musician --chdir /home/musician -- %q\n' "$4"
    } > "$1"
    chmod 755 "$1"
}

# appeared NAME FOLDER: what two runs in FOLDER have left behind, by its path there. Returns 1 if a file changed.
appeared() {
    if comm -23 "$work/$1.before" "$work/$1.after" | grep .; then
        echo "the runs changed or removed these files" >&2
        return 1
    fi
    comm -13 "$work/$1.before" "$work/$1.after" | sed -e "s,^\./,," -e "s,^${2#/}/,," -e 's/ [0-9.]* [0-9.]* *$//'
}

# updateIn NAME: an ordinary user there unpacks the bundle and updates units with it, twice.
updateIn() {
    local root=$work/$1 desk=$work/desk-$1 folder="/home/musician/Моя музыка и программы" top
    asUser mkdir "$root$folder"
    asUser tar -xzf "$archive" -C "$root$folder"
    top=$folder/$(basename "$archive" .tar.gz)
    install -d -o "$userId" -g "$userId" "$desk" "$desk/home"
    writeLauncher "$work/start-$1" "$root" "$desk" "$top/talvex-updater"
    listFiles "$root" > "$work/$1.before"
    asUser env -i PATH="$PATH" LANG=C.UTF-8 HOME="$desk/home" TMPDIR="$desk" TALVEX_TEST_PROGRAM="$work/start-$1" \
        build-test/bin/tst_bundle
    listFiles "$root" > "$work/$1.after"
    appeared "$1" "$top" > "$work/$1.appeared"
    cat "$work/$1.appeared"
    if grep -vE "$documented" "$work/$1.appeared"; then
        echo "the runs left files that no document names" >&2
        return 1
    fi
}

buildDriver() {
    cmake --preset test
    cmake --build build-test -j "$(nproc)" --target tst_bundle
}

# measureStart: prints the start beside the same program's with the system's libraries. Being slow is no failure here: the
# machine may be busy; a table without the figure is one.
measureStart() {
    scripts/bench.sh bundle > "$work/bench" || true
    grep -E '^(From|name|bundle-start)' "$work/bench" > "$work/start"
    grep -q '^bundle-start' "$work/start"
}

# checkPackage ARCHIVE OPTION...: of the archive that was built with these options.
checkPackage() {
    local system began=$SECONDS
    archive=$1
    shift
    if [ "$(id -u)" -ne 0 ]; then
        echo "package.sh: --check makes systems of its own and must be run as root" >&2
        return 1
    fi
    installMissing "${stagePackages[@]}" "${benchPackages[@]}" "${bundleCheckPackages[@]}"
    work=$(mktemp -d)
    chmod 755 "$work"
    trap endCheck EXIT
    trap 'exit 130' INT
    trap 'exit 143' TERM
    timed build-driver buildDriver
    for system in "${minimalSystems[@]}"; do
        timed "make-${system%:*}" makeSystem "${system%:*}" "${system#*:}" &
        children+=($!)
    done
    timed second-build packElsewhere "$@"
    for system in "${minimalSystems[@]}"; do
        wait "${children[0]}"
        children=("${children[@]:1}")
        timed "update-in-${system%:*}" updateIn "${system%:*}"
    done
    timed start-time measureStart
    cat "$work/start"
    echo "The second build, in another folder, gave the same bytes."
    echo "Check: $((SECONDS - began)) s"
}
