#!/bin/sh
# Sets up the updater on this computer: lets whoever sits at it use a unit, and puts the program, where it is, into
# the menu. Run it again after moving the folder. With --remove it undoes both.
# Exit code 0: all done, and this user may use every connected unit; 1: something is missing, and it said what; 2: it
# cannot be run like this, and has changed nothing.
set -u
export LC_ALL=C
umask 022

usage="usage: install-for-this-computer.sh [--remove]"
id=example.talvex.updater
here=$(CDPATH='' cd -- "$(dirname -- "$0")" && pwd -P) || exit 2
if [ ! -e "$here/share/version" ] || [ ! -e "$here/scripts/lib/unitaccess.sh" ]; then
    echo "${0##*/}: this script must stay in the program's folder. Run it in the unpacked folder." >&2
    exit 2
fi
# shellcheck source=scripts/lib/unitaccess.sh
. "$here/scripts/lib/unitaccess.sh"

newline='
'
rule=/etc/udev/rules.d/$ruleName
data=${XDG_DATA_HOME:-${HOME:+$HOME/.local/share}}
entry=$data/applications/$id.desktop
smallestSpaceMb=200 # two images of the largest size, and their backup
failed=0

# say TEXT: unlike with echo, a backslash in a folder's name is just that.
say() {
    printf '%s\n' "$1"
}

complain() {
    say "  FAILED: $1"
    failed=1
    return 1
}

has() {
    command -v "$1" > /dev/null
}

# asRoot SHELL-COMMANDS: as root, with this script's standard input. On a desktop by pkexec, and by sudo if pkexec can
# ask nobody or allows nothing; not if the user has dismissed it.
asRoot() {
    if has pkexec && { [ -n "${DISPLAY:-}${WAYLAND_DISPLAY:-}" ] || ! has sudo; }; then
        say "  You are asked for your password (pkexec)."
        pkexec sh -c "{ $1; } || exit 1"
        code=$?
        if [ "$code" -ne 127 ] || ! has sudo; then # 127 is pkexec's own
            return "$code"
        fi
    elif ! has sudo; then
        say "  Neither pkexec nor sudo is installed, so nobody can be asked for the administrator's password."
        return 1
    fi
    say "  Your password may be asked for here (sudo)."
    sudo sh -c "$1"
}

reload='udevadm control --reload && udevadm trigger --subsystem-match=usb --attr-match=idVendor=3a5d &&
    udevadm trigger --subsystem-match=hidraw && udevadm settle --timeout=30'

hasRule() {
    cmp -s "$here/share/$ruleName" "$rule"
}

# complainOfRule: after what was done as root has failed. The rule may be there all the same.
complainOfRule() {
    if hasRule; then
        complain "the rule is installed, but not applied yet: unplug the unit and plug it in again."
    else
        complain "the rule was not installed. An administrator can copy share/$ruleName to /etc/udev/rules.d."
    fi
}

installRule() {
    say "System rule (udev) that lets whoever sits at this computer use a unit: $rule"
    if ! hasRule; then
        commands="mkdir -p /etc/udev/rules.d && cat > $rule.new && chmod 644 $rule.new && mv -f $rule.new $rule ||
                { rm -f $rule.new; exit 1; }
            $reload"
        success="Installed."
    elif isAppliedToAll; then
        say "  It is there already."
        return
    else
        say "  It is there already, but not yet applied to a unit that is connected."
        commands=$reload
        success="Applied."
    fi
    if asRoot "$commands" < "$here/share/$ruleName" && hasRule && isAppliedToAll; then
        say "  $success"
    else
        complainOfRule
    fi
}

removeRule() {
    say "System rule (udev) that lets whoever sits at this computer use a unit: $rule"
    if [ ! -e "$rule" ]; then
        say "  It is not there."
        return
    fi
    say "  It will be removed for everybody who uses this computer."
    asRoot "rm -f $rule && udevadm control --reload"
    if [ -e "$rule" ]; then
        complain "the rule was not removed."
    else
        say "  Removed. Units that are connected keep their access until they are unplugged."
    fi
}

# copyTo SOURCE TARGET: whole or not at all; standard input if SOURCE is -. Returns 1 if that failed.
copyTo() {
    if ! mkdir -p "$(dirname "$2")" 2> /dev/null; then
        complain "cannot create the folder of $2 (no permission, or the disk is full)."
    elif { cat -- "$1" > "$2.new" && mv -f "$2.new" "$2"; } 2> /dev/null; then
        say "  $2"
    else
        rm -f "$2.new"
        complain "cannot write $2 (no permission, or the disk is full)."
    fi
}

# quoted TEXT: as one argument of the menu entry's command; a % would start a code there, and the entry itself takes a
# backslash for the start of something.
quoted() {
    # shellcheck disable=SC2016  # sed's own $
    printf '%s' "$1" | sed -e 's/[\\"`$]/\\&/g' -e 's/\\/\\\\/g' -e 's/%/%%/g'
}

# Some menus look for a program whose name they have not unquoted, so this goes through the shell.
writeEntry() {
    sed -e '/^\(Exec\|TryExec\|Path\)=/d' "$here/share/$id.desktop"
    # shellcheck disable=SC2016  # for the menu's shell
    printf 'Exec=sh -c "exec \\\\"\\\\$0\\\\"" "%s"\n' "$(quoted "$here/talvex-updater")"
    printf 'Path=%s\n' "$(printf '%s' "$here" | sed 's/\\/\\\\/g')"
}

# otherFolder: the folder of the copy that the menu starts; nothing if there is none, or if it is this one.
otherFolder() {
    sed -n 's/^Path=//p' "$entry" 2> /dev/null | sed 's/\\\\/\\/g' | grep -vxF -e "$here"
}

isCopy() {
    [ -n "$1" ] && [ -e "$1/talvex-updater" ]
}

# canBeNamed: whether a menu entry can hold the name of this folder.
canBeNamed() {
    case $here in
        *"$newline"*)
            complain "the folder's name has a line break, which no menu entry can hold. Rename it."
            return
            ;;
    esac
    if has iconv && ! printf '%s' "$here" | iconv -f UTF-8 -t UTF-8 > /dev/null 2>&1; then
        complain "the folder's name is not in UTF-8, and a menu entry can hold no other. Rename it."
    fi
}

# ownFiles: what is copied to the user's data folder, by its path in share/. These names have no blanks.
ownFiles() {
    (cd "$here/share" && find metainfo icons -type f 2> /dev/null | sort)
}

installEntry() {
    say "Menu entry, icon and description, for you alone, in $data"
    other=$(otherFolder)
    if isCopy "$other"; then
        say "  Another copy is in the menu, $other."
    elif [ -n "$other" ]; then
        say "  The menu still names $other, where the program no longer is."
    fi
    canBeNamed || return
    if ! writeEntry | copyTo - "$entry"; then
        failed=1 # what copyTo sets does not leave the pipe
    elif isCopy "$other"; then
        say "  The menu now starts this copy."
        say "  You may delete the other once you have taken your logs and backups out of it."
    elif [ -n "$other" ]; then
        say "  The menu now names this folder."
    fi
    for file in $(ownFiles); do
        copyTo "$here/share/$file" "$data/$file"
    done
    touch "$data/icons/hicolor" 2> /dev/null || true # menus that remember icons look again
}

removeEntry() {
    say "Menu entry, icon and description, in $data"
    for file in "applications/$id.desktop" $(ownFiles); do
        if [ ! -e "$data/$file" ]; then
            continue
        elif rm -f "$data/$file" 2> /dev/null; then
            say "  removed: $data/$file"
        else
            complain "cannot remove $data/$file."
        fi
    done
}

# The program keeps its files beside itself.
checkFolder() {
    say "The program's own folder: $here"
    if ! (: > "$here/.write-test") 2> /dev/null; then
        complain "it cannot be written to. The program keeps the firmware there: move the folder into your home."
        return
    fi
    rm -f "$here/.write-test"
    free=$(df --output=avail -k "$here" 2> /dev/null | tr -dc 0-9) # its heading has no digit
    if [ -z "$free" ]; then
        complain "the system does not say how much space is free there; an update may need $smallestSpaceMb MB."
    elif [ "$free" -lt $((smallestSpaceMb * 1024)) ]; then
        complain "only $((free / 1024)) MB is free there, and an update may need $smallestSpaceMb MB."
    fi
}

checkUnits() {
    say "Units connected now, and whether you may use them:"
    if [ -n "$(unitFolders)" ]; then
        describeUnits || failed=1
    else
        say "  none; connect the unit, switch it on and run this again to see whether you may use it"
    fi
}

# demandUser: leaves unless this is run by somebody who has a menu, and who may need the rule.
demandUser() {
    if [ "$(id -u)" -eq 0 ]; then
        say "Run this as the user who will use the program, without sudo or pkexec, and not as root." >&2
        say "It asks for the administrator's password when it needs it." >&2
        exit 2
    elif [ -z "$data" ]; then
        say "HOME is not set, so this script cannot tell where your menu is." >&2
        exit 2
    fi
}

case "$# ${1:-}" in
    "0 ")
        demandUser
        checkFolder
        installRule
        installEntry
        checkUnits
        ;;
    "1 --remove")
        demandUser
        other=$(otherFolder)
        if isCopy "$other"; then
            say "Nothing was removed: the menu starts another copy, $other. Run the script there."
            exit 1
        fi
        removeEntry
        removeRule
        ;;
    "1 --help")
        say "$usage"
        ;;
    *)
        say "$usage" >&2
        exit 2
        ;;
esac
if [ "$failed" -ne 0 ]; then
    say "Not everything is as it should be; see above."
fi
exit "$failed"
