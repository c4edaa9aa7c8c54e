# shellcheck shell=bash
# Packs what users of Windows get. Sourced, not run, from the project's folder. It needs guidePackages.
# shellcheck disable=SC2154  # the folders and versions are those of scripts/lib/windows.sh
# shellcheck source=scripts/lib/guide.sh
source scripts/lib/guide.sh

zipLimit=12000000 # bytes

mingwTriple=x86_64-w64-mingw32
# The platform and the style are loaded by name, so no import table tells of them.
zipPlugins=(platforms/qwindows.dll styles/qwindowsvistastyle.dll)

# runtimeFolders: where the libraries for Windows lie.
runtimeFolders() {
    printf '%s\n' "$windowsLibraries/qt/bin" "$windowsLibraries/hidapi/bin" \
        "$(dirname "$("$mingwTriple-gcc-posix" -print-file-name=libstdc++-6.dll)")" \
        "/usr/$mingwTriple/lib"
}

importsOf() {
    "$mingwTriple-objdump" -p "$1" | sed -n 's/^.*DLL Name: //p'
}

# addImports FILE FOLDER: copies every library that FILE imports, and theirs, to FOLDER; those of Windows stay away.
addImports() {
    local name source folder
    for name in $(importsOf "$1"); do
        [ ! -e "$2/$name" ] || continue
        source=
        while read -r folder; do
            [ ! -e "$folder/$name" ] || { source=$folder/$name && break; }
        done < <(runtimeFolders)
        [ -n "$source" ] || continue
        install -m 755 "$source" "$2/$name" && addImports "$source" "$2" || return
    done
}

# fillProgram BUILD FOLDER: the program and all that it needs to run.
fillProgram() {
    local plugin
    install -D -m 755 "$1/bin/talvex-updater.exe" "$2/talvex-updater.exe" && addImports "$2/talvex-updater.exe" "$2" ||
        return
    for plugin in "${zipPlugins[@]}"; do
        install -D -m 755 "$windowsLibraries/qt/plugins/$plugin" "$2/$plugin" && addImports "$2/$plugin" "$2" || return
    done
    # Otherwise strip stamps them with the present time.
    find "$2" \( -name '*.dll' -o -name '*.exe' \) -exec \
        env SOURCE_DATE_EPOCH=0 "$mingwTriple-strip" --strip-unneeded {} +
}

# versionOf PACKAGE
versionOf() {
    dpkg-query -W -f='${Version}' "$1"
}

# notices FOLDER: what comes from others, with its licences, where its source is, and what was changed in it.
notices() {
    local licences=$1/licences
    mkdir -p "$licences/qt/patches" "$licences/hidapi" "$licences/gcc" "$licences/mingw-w64"
    cp "$windowsLibraries"/qt/licences/* "$licences/qt"
    cp packaging/windows/qt/*.patch packaging/windows/qt/left-out.txt "$licences/qt/patches"
    cp "$windowsLibraries"/hidapi/LICENSE*.txt "$licences/hidapi"
    cp /usr/share/doc/gcc-mingw-w64-base/copyright /usr/share/common-licenses/GPL-3 "$licences/gcc"
    cp /usr/share/doc/mingw-w64-x86-64-dev/copyright "$licences/mingw-w64"
    sed -e "s|@QT_VERSION@|$(qtSourceVersion)|" -e "s|@HIDAPI_VERSION@|$hidapiVersion|" \
        -e "s|@HIDAPI_PACKAGE@|$hidapiPackage $hidapiPackageVersion|" \
        -e "s|@GCC_VERSION@|$(versionOf gcc-mingw-w64-x86-64-posix-runtime)|" \
        -e "s|@MINGW_VERSION@|$(versionOf mingw-w64-x86-64-dev)|" \
        packaging/windows/third-party.txt.in > "$1/THIRD-PARTY.txt"
}

# packZip BUILD FOLDER: FOLDER/talvex-updater-<version>-windows-x86_64.zip. Every file has the time of the commit, or
# that of SOURCE_DATE_EPOCH, so that the same files give the same bytes.
packZip() {
    local name epoch
    name=talvex-updater-$(sed -n 's/^CMAKE_PROJECT_VERSION:STATIC=//p' "$1/CMakeCache.txt")-windows-x86_64
    epoch=${SOURCE_DATE_EPOCH:-$(git log -1 --format=%ct)}
    rm -rf "${2:?}/$name" && mkdir -p "$2/$name" && fillProgram "$1" "$2/$name" && notices "$2/$name" &&
        guideAsHtml docs/user-guide.md > "$2/$name/user-guide.html" || return
    # Notepad of older Windows knows no other line ends.
    sed -i 's/\r*$/\r/' "$2/$name"/*.txt
    find "$2/$name" -type f ! -name '*.dll' ! -name '*.exe' -exec chmod 644 {} +
    find "$2/$name" -exec touch -h -d "@$epoch" {} +
    (cd "$2" && rm -f "$name.zip" && find "$name" -type f | LC_ALL=C sort | TZ=UTC zip -q -X -9 -@ "$name.zip")
}

# checkZip ZIP: nothing of the tests in it, every import of every file met, no time stamp, not too large.
checkZip() {
    local size folder=$work/unpacked file name failed=0
    size=$(stat -c %s "$1")
    echo "${1##*/}: $size bytes"
    if [ "$size" -gt "$zipLimit" ]; then
        echo "That is more than $zipLimit." >&2
        failed=1
    fi
    rm -rf "$folder" && mkdir "$folder" && unzip -q "$1" -d "$folder" || return
    while read -r file; do
        if ! grep -q '^Time/Date[[:space:]]*Thu Jan  1 00:00:00 1970' <<< "$(TZ=UTC "$mingwTriple-objdump" -p "$file")"; then
            echo "${file##*/} has a time stamp." >&2
            failed=1
        fi
        for name in $(importsOf "$file"); do
            if [ ! -e "$(echo "$folder"/*)/$name" ] && ! isOfWindows "$name"; then
                echo "${file##*/} needs $name." >&2
                failed=1
            fi
        done
    done < <(find "$folder" -name '*.dll' -o -name '*.exe')
    return "$failed"
}

# isOfWindows NAME: whether MinGW knows a library of the system under this name.
isOfWindows() {
    [ -e "/usr/$mingwTriple/lib/lib$(basename "${1,,}" .dll).a" ]
}
