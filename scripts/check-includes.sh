#!/bin/bash
# Holds every #include of the tree against the table of rooms in docs/architecture.md and prints FILE:LINE for each one
# that the table does not allow. Exit code 1 if there is any.
#
# The table is the one with a column "may include". Its first column names rooms (`net/`) or single files that may
# include more than their room; the column names rooms, files or <hidapi.h>, or says "everything". A room may always
# include itself and base/.
set -euo pipefail

cd "$(dirname "$(realpath "$0")")/.."
table=docs/architecture.md

mapfile -t files < <(git ls-files --cached --others --exclude-standard -- '*.cpp' '*.h' | sort)
existing=()
for file in "${files[@]}"; do
    [ ! -e "$file" ] || existing+=("$file") # not one that is deleted and not yet committed
done

# shellcheck disable=SC2016  # awk's own $
awk '
    function room(path) { return substr(path, 1, index(path, "/")) }

    # allow(WHOS, CELL): takes one cell of the table for every name in another.
    function allow(whos, cell,    who, rest) {
        while (match(whos, /`[^`]+`/)) {
            who = substr(whos, RSTART + 1, RLENGTH - 2)
            whos = substr(whos, RSTART + RLENGTH)
            listed[who]
            if (cell ~ /everything/)
                allowed[who, "*"]
            for (rest = cell; match(rest, /`[^`]+`/); rest = substr(rest, RSTART + RLENGTH))
                allowed[who, substr(rest, RSTART + 1, RLENGTH - 2)]
        }
    }

    # target(NAME): what an #include of this file names, from the project folder; empty for a library of others.
    function target(name,    beside) {
        if (name ~ /^"ui_.*\.h"$/) # generated from the layout
            return "ui/" substr(name, 5, length(name) - 5)
        if (name ~ /^<hidapi/)
            return "<hidapi.h>"
        name = substr(name, 2, length(name) - 2)
        beside = FILENAME
        sub(/[^\/]*$/, name, beside)
        return name in isFile ? name : beside in isFile ? beside : $0 ~ /"/ ? name : ""
    }

    function may(who, what) { return (who, what) in allowed || (who, room(what)) in allowed || (who, "*") in allowed }

    BEGIN { for (i = 2; i < ARGC; ++i) isFile[ARGV[i]] }

    FILENAME == ARGV[1] && /^\|/ {
        count = split($0, cells, / *\| */)
        for (i = 1; i <= count; ++i)
            if (tolower(cells[i]) == "may include")
                column = i
        if (column)
            allow(cells[2], cells[column])
        next
    }
    FILENAME == ARGV[1] { column = 0; next }

    FNR == 1 && !(room(FILENAME) in listed) { print FILENAME ":1: not in a room of the table"; bad = 1 }
    /^ *# *include *["<]/ {
        sub(/^ *# *include */, "")
        sub(/[">][^">]*$/, substr($0, 1, 1) == "<" ? ">" : "\"")
        what = target($0)
        if (what == "" || what ~ /\.moc$/ || room(what) == room(FILENAME) || room(what) == "base/" ||
            may(room(FILENAME), what) || may(FILENAME, what))
            next
        print FILENAME ":" FNR ": may not include " $0
        bad = 1
    }
    END { exit bad }
' "$table" "${existing[@]}" || { echo "Not as the table in $table says." >&2; exit 1; }
