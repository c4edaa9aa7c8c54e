# shellcheck shell=bash
# What scripts/package.sh --check does with its archive. Sourced from the project's folder, not run.
# shellcheck source=scripts/lib/packages.sh
source scripts/lib/packages.sh
# shellcheck source=scripts/lib/sources.sh
source scripts/lib/sources.sh

minimalSystems=(debian-12:bookworm debian-13:trixie)
someFont=fonts-dejavu-core
userId=1000
# What README.md says of files: those of the program beside it, and the font library's own.
documented='^(updater\.sb(\.bkp)?|[0-9]{4}(-[0-9]{2}){2}(_[0-9]{2}){3}(-2)?_log\.enc'
documented+='|home/musician/\.cache/(fontconfig/([0-9a-f]{32}-le64\.cache-[0-9]+|CACHEDIR\.TAG)?)?)$'
mostSeconds=360
work=
declare -A groups=() # of the steps that run now, by their names

endCheck() {
    trap - EXIT INT TERM
    local group tries
    for group in "${groups[@]}"; do
        kill -- -"$group" 2> /dev/null || true
    done
    for group in "${groups[@]}"; do
        for ((tries = 0; tries < 300; ++tries)); do
            kill -0 -- -"$group" 2> /dev/null || break
            sleep 0.1
        done
        kill -KILL -- -"$group" 2> /dev/null || true
    done
    wait
    rm -rf --one-file-system "$work"
}

# begin NAME COMMAND...: starts it, up to the first thing in it that fails, as a process group of its own, which can be
# ended whole.
begin() {
    local name=$1 began=$SECONDS
    shift
    set -m
    (
        set -e
        "$@"
        echo $((SECONDS - began)) > "$work/$name.time"
    ) < /dev/null > "$work/$name.log" 2>&1 &
    groups[$name]=$!
    set +m
}

# finish NAME: waits for its end and says how long it took. Its output is shown if it failed.
finish() {
    local code=0
    wait "${groups[$1]}" || code=$?
    unset "groups[$1]"
    if [ "$code" -ne 0 ]; then
        cat "$work/$1.log"
        echo "package.sh: failed: $1" >&2
        return 1
    fi
    printf '%-34s %4d s\n' "$1" "$(cat "$work/$1.time")"
}

timed() {
    begin "$@" # not joined to the next by "&&": then what it starts would go on after a failure
    finish "$1"
}

# packElsewhere OPTION...: the same sources in another folder, compiled anew.
packElsewhere() {
    copySources "$work/elsewhere"
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

# writeLauncher FILE ROOT DESK PROGRAM: a command that starts PROGRAM in the system at ROOT, as its user does: Qt chooses
# by itself where to paint. PROGRAM sees this system's X server and update server, by the network, and of its files only
# DESK and what the tests preload.
writeLauncher() {
    local probe=$PWD/build-test
    mkdir -p "$2$probe" "$2$3"
    {
        echo '#!/bin/bash'
        printf 'exec bwrap --die-with-parent --bind %q / --dev /dev --proc /proc --ro-bind %q %q --bind %q %q' \
            "$2" "$probe" "$probe" "$3" "$3"
        printf ' --unsetenv QT_QPA_PLATFORM --setenv HOME /home/musician --chdir /home/musician -- %q\n' "$4"
    } > "$1"
    chmod 755 "$1"
}

# appeared NAME FOLDER: what the runs in FOLDER have left behind, by its path there. Returns 1 if a file changed.
appeared() {
    if comm -23 "$work/$1.before" "$work/$1.after" | grep .; then
        echo "the runs changed or removed these files" >&2
        return 1
    fi
    comm -13 "$work/$1.before" "$work/$1.after" | sed -e "s,^\./,," -e "s,^${2#/}/,," -e 's/ [0-9.]* [0-9.]* *$//'
}

# reportIn NAME TOP: the report for support made there, in the unpacked folder TOP, knows the program.
reportIn() {
    local root=$work/$1 top=$2 version=${archive##*/talvex-updater-} program
    program=$(sha256sum < "$root$top/talvex-updater")
    writeLauncher "$work/report-$1" "$root" "$work/desk-$1" "$top/scripts/support-report.sh"
    asUser env -i PATH="$PATH" "$work/report-$1" > "$work/$1.report"
    cat "$work/$1.report"
    grep -qxF "  version: ${version%-linux-*}" "$work/$1.report"
    grep -qF " ${program%% *} talvex-updater" "$work/$1.report"
}

# updateIn NAME: an ordinary user there unpacks the bundle and updates units with it, time and again.
updateIn() {
    local root=$work/$1 desk=$work/desk-$1 folder="/home/musician/Моя музыка и программы" top
    asUser mkdir "$root$folder"
    asUser tar -xzf "$archive" -C "$root$folder"
    top=$folder/$(basename "$archive" .tar.gz)
    install -d -o "$userId" -g "$userId" "$desk" "$desk/home"
    writeLauncher "$work/start-$1" "$root" "$desk" "$top/talvex-updater"
    listFiles "$root" > "$work/$1.before"
    reportIn "$1" "$top"
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

# measureStart: the start beside the same program's with the system's libraries; once more if that misses the limit, for
# the machine may be busy. A table without the figure is an error.
measureStart() {
    local round
    for round in first second; do
        scripts/bench.sh bundle > "$work/bench" || true
        echo "$round measurement"
        grep -E '^(From|name|bundle-start)' "$work/bench" >> "$work/start"
        grep -q '^bundle-start' "$work/bench"
        if wasQuick; then
            return
        fi
    done
}

wasQuick() {
    grep -q '^bundle-start .*pass$' "$work/start"
}

# judge: says loudly what is missed. Returns 1 if that cannot be put down to a busy machine.
judge() {
    local result=0
    if ! wasQuick; then
        echo "MISSED: the bundle starts more slowly than it may beside the system's libraries; measured twice" >&2
        result=1
    fi
    if ((SECONDS > mostSeconds)); then
        echo "MISSED: all this took $SECONDS s, more than $mostSeconds s; is the machine busy?" >&2
    fi
    return "$result"
}

# demandCheckable OPTION...: returns 1, and says why, if what is built with these options cannot be checked here.
demandCheckable() {
    if printf '%s\n' "$@" | grep -q '^-DTALVEX_CATALOGUE_KEY[:=]'; then
        echo "package.sh: --check updates from a catalogue that is not signed: leave out -DTALVEX_CATALOGUE_KEY" >&2
        return 1
    fi
    if [ "$(id -u)" -ne 0 ]; then
        echo "package.sh: --check makes systems of its own and must be run as root" >&2
        return 1
    fi
    if ! asUser test -r "$PWD/CMakeLists.txt"; then
        echo "package.sh: --check runs tests as user $userId, who cannot read $PWD" >&2
        return 1
    fi
}

# checkPackage ARCHIVE OPTION...: of the archive that was built with these options.
checkPackage() {
    local system
    archive=$1
    shift
    installMissing "${stagePackages[@]}" "${benchPackages[@]}" "${bundleCheckPackages[@]}"
    work=$(mktemp -d)
    chmod 755 "$work"
    trap endCheck EXIT
    trap 'exit 130' INT
    trap 'exit 143' TERM
    timed build-driver buildDriver
    for system in "${minimalSystems[@]}"; do
        begin "make-${system%:*}" makeSystem "${system%:*}" "${system#*:}"
    done
    timed second-build packElsewhere "$@"
    for system in "${minimalSystems[@]}"; do
        finish "make-${system%:*}"
        timed "update-in-${system%:*}" updateIn "${system%:*}"
    done
    timed start-time measureStart
    cat "$work/start"
    echo "The second build, in another folder, gave the same bytes."
    echo "Packed and checked: $SECONDS s"
    judge
}
