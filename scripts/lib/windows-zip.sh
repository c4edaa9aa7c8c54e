# shellcheck shell=bash
# Packs what users of Windows get. Sourced, not run, from the project's folder. It needs guidePackages.
# shellcheck disable=SC2154  # the folders and versions are those of scripts/lib/windows.sh
# shellcheck source=scripts/lib/guide.sh
source scripts/lib/guide.sh

zipLimit=12000000 # bytes

mingwTriple=x86_64-w64-mingw32
strip=(env SOURCE_DATE_EPOCH=0 "$mingwTriple-strip" --strip-unneeded) # otherwise it stamps files with the present time
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
    find "$2" \( -name '*.dll' -o -name '*.exe' \) -exec "${strip[@]}" {} +
}

# sourceOf PACKAGE: name and version of Debian's source package that it was built from.
sourceOf() {
    # shellcheck disable=SC2016  # dpkg-query's own $
    dpkg-query -W -f='${source:Package} ${source:Version}' "$1"
}

# builtUsing PACKAGE: likewise, of another one that it was built from as well.
builtUsing() {
    # shellcheck disable=SC2016  # likewise
    dpkg-query -W -f='${Built-Using}' "$1" | sed -n 's/^\([^ ]*\) (= \([^ )]*\))$/\1 \2/p' | grep . ||
        { echo "Debian's $1 does not say what single source it was built from." >&2 && return 1; }
}

# notices FOLDER: what comes from others, with its licences, where its source is, and what was changed in it.
notices() {
    local licences=$1/licences qt gcc gccPackaging mingw
    qt=$(qtSourceVersion) && gcc=$(builtUsing gcc-mingw-w64-x86-64-posix-runtime) &&
        gccPackaging=$(sourceOf gcc-mingw-w64-x86-64-posix-runtime) && mingw=$(sourceOf mingw-w64-x86-64-dev) || return
    mkdir -p "$licences/qt/patches" "$licences/hidapi" "$licences/gcc" "$licences/mingw-w64" &&
        cp "$windowsLibraries"/qt/licences/* "$licences/qt" &&
        cp packaging/windows/qt/*.patch packaging/windows/qt/left-out.txt "$licences/qt/patches" &&
        cp "$windowsLibraries"/hidapi/LICENSE*.txt "$licences/hidapi" &&
        cp /usr/share/doc/gcc-mingw-w64-base/copyright /usr/share/common-licenses/GPL-3 "$licences/gcc" &&
        cp /usr/share/doc/mingw-w64-x86-64-dev/copyright "$licences/mingw-w64" &&
        sed -e "s|@QT_VERSION@|$qt|" -e "s|@HIDAPI_VERSION@|$hidapiVersion|" \
            -e "s|@HIDAPI_PACKAGE@|$hidapiPackage $hidapiPackageVersion|" -e "s|@GCC@|$gcc|" \
            -e "s|@GCC_PACKAGING@|$gccPackaging|" -e "s|@MINGW@|$mingw|" \
            packaging/windows/third-party.txt.in > "$1/THIRD-PARTY.txt"
}

# zipName BUILD: without ".zip".
zipName() {
    echo "talvex-updater-$(sed -n 's/^CMAKE_PROJECT_VERSION:STATIC=//p' "$1/CMakeCache.txt")-windows-x86_64"
}

# timeOfFiles: that of the commit, or SOURCE_DATE_EPOCH; in seconds.
timeOfFiles() {
    local epoch=${SOURCE_DATE_EPOCH:-$(git log -1 --format=%ct)}
    if [ -z "$epoch" ]; then
        echo "Neither git nor SOURCE_DATE_EPOCH tells which time the files are to have." >&2
        return 1
    fi
    echo "$epoch"
}

# packZip BUILD FOLDER: FOLDER/<zipName>.zip. The same files give the same bytes.
packZip() {
    local name epoch
    name=$(zipName "$1") && epoch=$(timeOfFiles) || return
    rm -rf "${2:?}/$name" && mkdir -p "$2/$name" && fillProgram "$1" "$2/$name" && notices "$2/$name" &&
        guideAsHtml docs/user-guide.md > "$2/$name/user-guide.html" || return
    # Notepad of older Windows knows no other line ends.
    sed -i 's/\r*$/\r/' "$2/$name"/*.txt &&
        find "$2/$name" -type f ! -name '*.dll' ! -name '*.exe' -exec chmod 644 {} + &&
        find "$2/$name" -exec touch -h -d "@$epoch" {} + || return
    (cd "$2" && rm -f "$name.zip" && find "$name" -type f | LC_ALL=C sort | TZ=UTC zip -q -X -9 -@ "$name.zip")
}

# checkZip ZIP: exactly the files that belong in it, every import of every file met, no time stamp, not too large.
checkZip() {
    local size folder=$work/unpacked top file failed=0
    size=$(stat -c %s "$1")
    echo "${1##*/}: $size bytes"
    if [ "$size" -gt "$zipLimit" ]; then
        echo "That is more than $zipLimit." >&2
        failed=1
    fi
    rm -rf "$folder" && mkdir "$folder" && unzip -q "$1" -d "$folder" || return
    top=$(echo "$folder"/*)
    checkNames "$top" && checkProgram "$top/talvex-updater.exe" && checkHidLibrary "$top/hidapi.dll" || failed=1
    while read -r file; do
        checkLinks "$file" "$top" || failed=1
    done < <(find "$top" -name '*.dll' -o -name '*.exe')
    return "$failed"
}

# checkNames FOLDER: the files are those of packaging/windows/files.txt, and none is empty.
checkNames() {
    if ! diff <(grep -v '^#' packaging/windows/files.txt) <(find "$1" -type f -printf '%P\n' | LC_ALL=C sort) > "$work/names"; then
        echo "The zip lacks (<), or has beyond packaging/windows/files.txt (>):" >&2
        grep '^[<>]' "$work/names" >&2
        return 1
    fi
    ! find "$1" -type f -empty | grep . >&2
}

# checkProgram FILE: it opens no console, and has its icon, version and manifest.
checkProgram() {
    local resource resources
    if ! grep -q '^Subsystem.*00000002' <<< "$("$mingwTriple-objdump" -p "$1")"; then
        echo "${1##*/} is a program with a console." >&2
        return 1
    fi
    resources=$(wrestool -l "$1")
    for resource in 14:icon 16:version 24:manifest; do # Windows' numbers for these types
        if ! grep -q -- "^--type=${resource%:*} " <<< "$resources"; then
            echo "${1##*/} has no ${resource#*:}." >&2
            return 1
        fi
    done
}

# checkHidLibrary FILE: it is the built one, not that of the tests.
checkHidLibrary() {
    "${strip[@]}" -o "$work/hidapi.dll" "$windowsLibraries/hidapi/bin/hidapi.dll" &&
        cmp "$work/hidapi.dll" "$1"
}

# checkLinks FILE FOLDER: what it imports is in FOLDER, or belongs to Windows. It has no time stamp.
checkLinks() {
    local name failed=0
    if ! grep -q '^Time/Date[[:space:]]*Thu Jan  1 00:00:00 1970' <<< "$(TZ=UTC "$mingwTriple-objdump" -p "$1")"; then
        echo "${1##*/} has a time stamp." >&2
        failed=1
    fi
    for name in $(importsOf "$1"); do
        if [ ! -e "$2/$name" ] && ! isOfWindows "$name"; then
            echo "${1##*/} needs $name." >&2
            failed=1
        fi
    done
    return "$failed"
}

# isOfWindows NAME: whether MinGW knows a library of the system under this name.
isOfWindows() {
    [ -e "/usr/$mingwTriple/lib/lib$(basename "${1,,}" .dll).a" ]
}
