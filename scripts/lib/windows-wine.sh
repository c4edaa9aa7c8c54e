# shellcheck shell=bash
# Wine, as the tests want it. Sourced, not run, from the project's folder.
# shellcheck disable=SC2154  # the folders are those of scripts/lib/windows.sh

# Wine takes Windows' code page from the locale.
export WINEDEBUG=-all WINEDLLOVERRIDES='mscoree,mshtml=' LC_ALL=C.UTF-8

# onScreen COMMAND...: runs it on a screen of its own; Wine wants one.
onScreen() {
    xvfb-run -a -s '-screen 0 1600x1200x24 -nolisten tcp' "$@"
}

# prefixKey: the digest of what a prefix is made from. Copies share its files, which another Wine would update.
prefixKey() {
    {
        wine --version 2> /dev/null
        declare -f onScreen makePrefix
        declare -p WINEDLLOVERRIDES
    } | sha256sum | cut -c 1-20
}

# prefixIsMade FOLDER: whether it is there, made by this Wine in this way.
prefixIsMade() {
    [ -e "$1/made-from" ] && [ "$(cat "$1/made-from")" = "$(prefixKey)" ]
}

# makePrefix FOLDER: a prefix to copy. A crash opens no box, and texts are drawn in a font that there is.
makePrefix() {
    local font
    rm -rf "$1" "$1.partial" && mkdir -p "$1.partial" || return
    export WINEPREFIX=$1.partial
    {
        onScreen timeout 300 wine wineboot --init &&
            wine reg add 'HKCU\Software\Wine\WineDbg' /v ShowCrashDialog /t REG_DWORD /d 0 /f &&
            for font in 'MS Shell Dlg' 'MS Shell Dlg 2' 'Segoe UI' Tahoma; do
                wine reg add 'HKCU\Software\Wine\Fonts\Replacements' /v "$font" /d 'DejaVu Sans' /f || break
            done &&
            { wineserver -k || true; } && wineserver -w # it may have ended by itself
    } < /dev/null > "$work/wine.log" 2>&1 || { cat "$work/wine.log" && return 1; }
    unset WINEPREFIX
    prefixKey > "$1.partial/made-from"
    mv "$1.partial" "$1"
}
