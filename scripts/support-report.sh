#!/bin/sh
# Prints what support needs to know of this computer and of the program, whose folder this one is in. Plain text; nothing
# is sent anywhere, and no content of a unit's log or of an image is shown.
set -u
export LC_ALL=C

here=$(CDPATH='' cd -- "$(dirname -- "$0")/.." && pwd -P) || exit 2
if [ ! -e "$here/share/version" ] || [ ! -e "$here/scripts/lib/unitaccess.sh" ]; then
    echo "${0##*/}: this script must stay in the program's folder. Run it in the unpacked folder." >&2
    exit 2
fi
# shellcheck source=scripts/lib/unitaccess.sh
. "$here/scripts/lib/unitaccess.sh"
mostLines=200

# orUnknown COMMAND...: its first line of output.
orUnknown() {
    "$@" 2> /dev/null | head -n 1 | grep . || echo unknown
}

# isSet NAME VALUE: a proxy's value may hold a password.
isSet() {
    echo "  $1: $([ -n "$2" ] && echo set || echo "not set")"
}

reportProgram() {
    echo "Program"
    echo "  version: $(orUnknown cat "$here/share/version")"
    grep -E '^(libqt5core5a|libqt5core5t64|libhidapi-[a-z]*0|libusb-1.0-0), ' "$here/licenses/THIRD-PARTY-NOTICES.txt" 2> /dev/null |
        sed 's/^/  with /'
}

reportSystem() {
    echo "System"
    echo "  name: $(sed -n 's/^PRETTY_NAME="*\([^"]*\)"*$/\1/p' /etc/os-release 2> /dev/null | grep . || echo unknown)"
    echo "  kernel: $(uname -srm)"
    echo "  C library: $(orUnknown getconf GNU_LIBC_VERSION)"
    echo "  session: ${XDG_SESSION_TYPE:-unknown}, ${XDG_CURRENT_DESKTOP:-no desktop named}"
    echo "  user: $(id -u); who sits at the computer: $(activeUser | grep . || echo unknown)"
    echo "  rule: $(installedRule | grep . || echo "not installed")"
    isSet http_proxy "${http_proxy:-}"
}

reportJournal() {
    echo "Journal: the last $mostLines lines of the program, this user's"
    journalctl --user --no-pager --quiet --lines="$mostLines" _COMM=talvex-updater 2>&1 | sed 's/^/  /'
}

# The report itself, if it becomes one of the files, is not finished yet.
reportFiles() {
    echo "Files: size, SHA-256, name"
    (cd "$here" && find . -type f | sort) | while IFS= read -r file; do
        # shellcheck disable=SC3013  # dash and bash both know -ef
        [ ! "$here/$file" -ef /dev/stdout ] || continue
        printf '  %10d %s %s\n' "$(stat -c %s "$here/$file")" "$(sha256sum < "$here/$file" | cut -d ' ' -f 1)" "${file#./}"
    done
}

echo "Report on the Talvex updater, $(date -u '+%Y-%m-%d %H:%M:%S') UTC"
reportProgram
reportSystem
echo "Units connected now, and whether this user may use them:"
describeUnits || true
reportJournal
reportFiles
