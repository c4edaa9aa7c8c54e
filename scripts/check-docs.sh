#!/bin/bash
# Checks that every file and every test that the documents name exists, that docs/windows.md names every patch to Qt, and
# that the code which a row of docs/kept-on-purpose.md names says "intentional" close by. Exit code 1: something is
# missing; it is printed.
set -euo pipefail

cd "$(dirname "$(realpath "$0")")/.."
failed=0
complain() {
    echo "check-docs.sh: $*" >&2
    failed=1
}

# named DOCUMENT PATTERN: what the document names in backticks, once each.
named() {
    { grep -oE "\`$2\`" "$1" || true; } | tr -d '`' | sort -u
}

mapfile -t documents < <(git ls-files --cached --others --exclude-standard -- '*.md')
for document in "${documents[@]}"; do
    while read -r path; do
        case $path in
            artifacts/* | build*) continue ;; # come into being later
        esac
        [ -e "$path" ] || complain "$document: there is no $path"
    done < <(named "$document" '[a-z.][A-Za-z0-9_.-]*/[A-Za-z0-9_./-]*')
    while IFS=: read -r program _ function; do
        grep -qsE "void ([A-Za-z_]+::)?$function\(\)" tests/*/"$program.cpp" || complain "$document: there is no $program::$function"
    done < <(named "$document" 'tst_[a-z0-9]+::[A-Za-z0-9_]+')
done

for patch in packaging/windows/qt/*.patch; do
    grep -qF "| \`$patch\` |" docs/windows.md || complain "docs/windows.md does not say what $patch is for"
done

# The second column of each table names the code; the first one, in backticks, what stands near the word there.
kept=docs/kept-on-purpose.md
while IFS='|' read -r _ what where _; do
    mapfile -t paths < <(grep -oE '[a-z]+/[a-z_]+\.[a-z]+' <<< "$where")
    [ ${#paths[@]} -gt 0 ] || continue
    for path in "${paths[@]}"; do
        grep -qsi intentional "$path" || complain "$kept: $path does not say \"intentional\""
    done
    while read -r name; do
        grep -hsiC 5 intentional "${paths[@]}" | grep -wF -- "$name" > /dev/null ||
            complain "$kept: ${paths[*]}: no \"intentional\" within five lines of $name"
    done < <({ grep -oE "\`[^\`]+\`" <<< "$what" || true; } | tr -d '`' | sed -E 's/^([A-Za-z]+::)+//; s/\(.*//')
done < "$kept"
exit "$failed"
