#!/bin/bash
# scripts/mutate.sh [--check] [PATTERN]
# Do the tests notice a broken program? Makes the edits listed in tests/mutations, one at a time, in copies of the tree
# (build-mutants), and runs the test that each names. PATTERN: only files whose path matches it, as in [[ =~ ]].
# Prints a table: killed (the test fails, crashes or hangs), survived, and what is wrong with the list: the text does
# not occur exactly once in the file, or the edit does not build. Exit code 1: something is wrong with the list.
# --check only looks whether each text occurs exactly once.
#
#     = FILE TEST [FUNCTION[:ROW]]  for the edits below it
#     - the text in FILE            both may have several lines
#     + what replaces it
#     ~ why no test can tell        for a survivor
set -euo pipefail

cd "$(dirname "$(realpath "$0")")/.."
# shellcheck source=scripts/lib/packages.sh
. scripts/lib/packages.sh

onlyCheck=
if [ "${1-}" = --check ]; then
    onlyCheck=yes
    shift
fi
pattern=${1-.}
scratch=$PWD/build-mutants
workers=2
slowest=5 # times as long as the test takes unchanged, plus half a minute: then it counts as hanging
export QT_QPA_PLATFORM=offscreen CMAKE_CXX_COMPILER_LAUNCHER=ccache
files=() runs=() olds=() news=() reasons=()
declare -A limits # of each of `runs`, in s

# takeEdit: adds the edit read so far, if it is wanted.
takeEdit() {
    if [ -n "$old" ] && [[ $file =~ $pattern ]]; then
        files+=("$file") runs+=("$run") olds+=("${old%$'\n'}") news+=("${new%$'\n'}") reasons+=("$reason")
    fi
    old='' new='' reason=''
}

# readList FILE
readList() {
    local line file='' run='' old='' new='' reason=''
    while IFS= read -r line; do
        if [ -n "$new" ] && [[ $line != [+~]* ]]; then
            takeEdit
        fi
        case $line in
            =*) read -r file run <<< "${line:1}" ;;
            -*) old+=${line:2}$'\n' ;;
            +*) new+=${line:2}$'\n' ;;
            \~*) reason=${line:2} ;;
        esac
    done < "$1"
    takeEdit
}

# copyTree TREE: copies what git tracks or would add, uncommitted changes included.
copyTree() {
    rm -rf "$1" && mkdir -p "$1"
    git ls-files -z --cached --others --exclude-standard | tar --null --ignore-failed-read -T - -cf - | tar -xf - -C "$1"
}

# build TREE JOBS TARGET...
build() {
    CCACHE_BASEDIR=$1 cmake --build "$1/build" -j "$2" --target "${@:3}" > "$1/build.log" 2>&1
}

# notices TREE LIMIT RUN: returns 0 if the test fails, with the first failure in `verdict`.
notices() {
    local log=$1/test.log test function pid status=0
    read -r test function <<< "$3"
    : > "$log" # not the previous edit's
    timeout -k 10 "$2" "$(find "$1/build" -type f -perm -1 -name "$test")" ${function:+"$function"} > "$log" 2>&1 &
    pid=$!
    while kill -0 "$pid" 2> /dev/null; do
        if grep -q '^FAIL!' "$log"; then
            kill "$pid" 2> /dev/null || true # the rest would only take time
            break
        fi
        sleep 0.1
    done
    { wait "$pid" || status=$?; } 2> /dev/null # bash itself would report a crash
    case $status in
        0) return 1 ;;
        124 | 137) verdict="still running after $2 s" ;;
        *) verdict=$(sed -n 's/^FAIL! *: *//p' "$log" | head -n 1) ;;
    esac
    verdict=${verdict:-exit code $status}
}

# standsOnce FILE TEXT
standsOnce() {
    local content after
    [ -f "$1" ] || return 1
    content=$(< "$1")
    after=${content#*"$2"}
    [ "$after" != "$content" ] && [ "$after" = "${content##*"$2"}" ]
}

# replaceOnce FILE OLD NEW: fails unless OLD stands there exactly once.
replaceOnce() {
    local content
    content=$(< "$1")
    standsOnce "$1" "$2" && printf '%s\n' "${content%%"$2"*}$3${content#*"$2"}" > "$1"
}

# checkLists: fails, and says which, if there is an edit that cannot be made.
checkLists() {
    local index result=0
    for index in "${!files[@]}"; do
        if ! standsOnce "${files[index]}" "${olds[index]}"; then
            echo "mutate.sh: not in ${files[index]} exactly once: ${olds[index]}" >&2
            result=1
        fi
    done
    return "$result"
}

# try TREE INDEX: makes one edit and prints its row.
try() {
    local tree=$1 file=${files[$2]} run=${runs[$2]} result verdict=''
    cp "$tree/$file" "$tree/unchanged"
    if ! replaceOnce "$tree/$file" "${olds[$2]}" "${news[$2]}"; then
        result="TEXT NOT FOUND ONCE"
    elif ! build "$tree" 1 "${run%% *}"; then
        result="DOES NOT BUILD" verdict=$(grep -m 1 'error:' "$tree/build.log" || true)
    elif notices "$tree" "${limits[$run]}" "$run"; then
        result=killed
    else
        result=SURVIVED verdict=${reasons[$2]:-$run passes}
    fi
    cp "$tree/unchanged" "$tree/$file" # with a new time stamp, so that it is compiled again
    printf '%s  %s: "%s" -> "%s"  (%s)\n' "$result" "$file" "${olds[$2]//$'\n'/\\n}" "${news[$2]//$'\n'/\\n}" "$verdict"
}

# work NUMBER: makes every edit that belongs to this worker.
work() {
    local index
    for ((index = $1; index < ${#files[@]}; index += workers)); do
        try "$scratch/$1" "$index"
    done
}

# measure RUN: checks that the unchanged program passes, and derives the limit from the time it takes.
measure() {
    local verdict=''
    SECONDS=0
    if notices "$scratch/0" 600 "$1"; then
        echo "$1 fails even with the unchanged program ($verdict)" >&2
        return 1
    fi
    limits[$1]=$((SECONDS * slowest + 30))
}

# rows WORD: the rows with this result.
rows() {
    grep -h "^$1" "$scratch"/rows-* || true
}

for list in tests/mutations/*.txt; do
    readList "$list"
done
[ ${#files[@]} -gt 0 ] || { echo "no edit is listed for a file that matches $pattern" >&2; exit 2; }
if [ -n "$onlyCheck" ]; then
    checkLists
    exit
fi
installMissing "${buildPackages[@]}" "${stagePackages[@]}" "${checkPackages[@]}"

started=$(date +%s)
mapfile -t tests < <(printf '%s\n' "${runs[@]%% *}" | sort -u)
for ((worker = 0; worker < workers; ++worker)); do
    tree=$scratch/$worker
    copyTree "$tree"
    cmake -G Ninja -S "$tree" -B "$tree/build" -DCMAKE_BUILD_TYPE=Debug -DCMAKE_CXX_FLAGS_DEBUG=-O0 -DTALVEX_TESTS=ON \
        > /dev/null
    build "$tree" "$(nproc)" "${tests[@]}" || { tail -n 30 "$tree/build.log" >&2; exit 1; }
done
while IFS= read -r run; do
    measure "$run"
done < <(printf '%s\n' "${runs[@]}" | sort -u)

pids=()
trap 'kill "${pids[@]}" 2> /dev/null || true' EXIT
for ((worker = 0; worker < workers; ++worker)); do
    work "$worker" | tee "$scratch/rows-$worker" &
    pids+=("$!")
done
for pid in "${pids[@]}"; do
    wait "$pid"
done
printf '\nTo be looked at:\n'
rows '[A-Z]'
printf '%s edits: %s killed, %s survived, %s not made; %s min\n' "${#files[@]}" "$(rows killed | wc -l)" \
    "$(rows SURVIVED | wc -l)" "$(rows '[TD]' | wc -l)" "$((($(date +%s) - started + 59) / 60))"
[ -z "$(rows '[TD]')" ]
