# shellcheck shell=bash
# Qt base for Windows: built by MinGW from Debian's source of the Qt that is installed here, whose moc, rcc, uic and
# qmake it is used with. It is kept in the user's cache directory. Sourced, not run, from the project's folder.

qtCache=${XDG_CACHE_HOME:-$HOME/.cache}/talvex-updater
qtHostTools=/usr/lib/qt5/bin
# shellcheck disable=SC2054  # the comma is the linker's
qtOptions=(
    -opensource -confirm-license -release -shared -platform linux-g++ -xplatform win32-g++
    -device-option CROSS_COMPILE=x86_64-w64-mingw32- -external-hostbindir "$qtHostTools" -prefix /qt
    -c++std c++17 -nomake examples -nomake tests -nomake tools
    -no-opengl -no-angle -no-dbus -no-icu -no-glib -no-libjpeg -no-gif -no-ico
    -no-openssl -schannel # without any of them there is no QSslError
    -qt-zlib -qt-pcre -qt-freetype -qt-harfbuzz -qt-libpng -qt-doubleconversion
    'QMAKE_LFLAGS+=-Wl,--no-insert-timestamp'
    'QMAKE_CFLAGS_OPTIMIZE_FULL=-O2' 'QMAKE_CXXFLAGS_OPTIMIZE_FULL=-O2') # -O3 takes longer, for nothing that matters here
# What make takes for built: Debian's tools are used.
qtToolsThere=(bootstrap moc rcc uic tracegen qlalr qvkgen)
qtInstalled=(corelib winmain network gui widgets testlib platformheaders
    plugins/platforms/windows plugins/platforms/offscreen plugins/styles/windowsvista)

# qtSourceVersion: of Debian's source package, as installed here.
qtSourceVersion() {
    # shellcheck disable=SC2016  # dpkg-query's own $
    dpkg-query -W -f='${source:Version}' qtbase5-dev-tools
}

qtLeftOut() {
    grep -v '^#' packaging/windows/qt/left-out.txt
}

# qtKey: what the built Qt is kept under: the digest of what it is made from.
qtKey() {
    {
        qtSourceVersion
        dpkg-query -W -f='${Package} ${Version}\n' binutils-mingw-w64-x86-64 g++-mingw-w64-x86-64-posix mingw-w64-x86-64-dev
        cat packaging/windows/qt/*
        declare -p qtOptions qtToolsThere qtInstalled
        declare -f configureQt compileQt installQt
    } | sha256sum | cut -c 1-20
}

# qtIsKept KEPT: whether a whole Qt is there. A damaged one is removed.
qtIsKept() {
    [ -d "$1" ] || return 1
    if (cd "$1" && sha256sum --quiet --strict --check digest) 2> /dev/null; then
        return 0
    fi
    echo "The Qt kept in $1 is damaged; it is made anew."
    rm -rf "$1"
    return 1
}

# fetchQt WORK: puts the patched source into WORK/source, from where this system's packages come from.
fetchQt() {
    local work=$1 list patch
    local apt=(-o Dir::Etc::SourceList=/dev/null -o "Dir::Etc::SourceParts=$work/sources" -o "Dir::State::Lists=$work/lists"
        -o Dir::Cache::pkgcache= -o Dir::Cache::srcpkgcache= -o APT::Sandbox::User=)
    mkdir -p "$work/sources" "$work/lists/partial"
    for list in /etc/apt/sources.list /etc/apt/sources.list.d/*; do
        [ -f "$list" ] || continue
        case $list in # apt's two forms
            *.sources) sed 's/^Types:.*/Types: deb-src/' "$list" > "$work/sources/${list##*/}" ;;
            *.list) sed -n 's/^deb /deb-src /p' "$list" > "$work/sources/${list##*/}" ;;
        esac
    done
    apt-get "${apt[@]}" update > "$work/log" &&
        (cd "$work" && apt-get "${apt[@]}" source --download-only "qtbase-opensource-src=$(qtSourceVersion)") >> "$work/log" &&
        # apt has compared the archive's signed digests
        dpkg-source --no-check -x "$work"/*.dsc "$work/source" >> "$work/log" 2>&1 || return
    for patch in packaging/windows/qt/*.patch; do
        patch --quiet -d "$work/source" -p 1 < "$patch" || return
    done
}

# configureQt WORK: in WORK/build.
configureQt() {
    local feature left=()
    for feature in $(qtLeftOut); do
        left+=("-no-feature-$feature")
    done
    mkdir "$1/build" &&
        (cd "$1/build" && ../source/configure "${qtOptions[@]}" "${left[@]}" && make sub-src-qmake_all) >> "$1/log" 2>&1
}

# compileQt WORK
compileQt() {
    local tool there=()
    for tool in "${qtToolsThere[@]}"; do
        there+=(-o "sub-$tool-make_first")
    done
    local make=(make -j "$(nproc)")
    {
        "${make[@]}" -C "$1/build/src" "${there[@]}" sub-winmain-make_first sub-testlib-make_first \
            sub-network-make_first sub-platformsupport-make_first sub-platformheaders-make_first &&
            "${make[@]}" -C "$1/build/src/plugins/platforms" sub-windows-make_first sub-offscreen-make_first &&
            "${make[@]}" -C "$1/build/src/plugins/styles"
    } >> "$1/log" 2>&1
}

# installQt WORK: into WORK/root/qt.
installQt() {
    local part tool
    for part in "${qtInstalled[@]}"; do
        make -C "$1/build/src/$part" install INSTALL_ROOT="$1/root" >> "$1/log" 2>&1 || return
    done
    mkdir -p "$1"/root/qt/{bin,mkspecs,licences} &&
        cp -r "$1"/source/mkspecs/{win32-g++,common} "$1/root/qt/mkspecs" &&
        cp "$1"/source/{LICENSE.LGPL3,LICENSE.GPL3,LICENSE.GPL2,debian/copyright} "$1/root/qt/licences" || return
    for tool in moc rcc uic qmake; do # Qt's CMake files look for them there
        ln -sf "$qtHostTools/$tool" "$1/root/qt/bin/$tool" || return
    done
}

# packQt WORK: into WORK/kept, with the digest that qtIsKept compares.
packQt() {
    mkdir "$1/kept" &&
        tar -C "$1/root" --sort=name --owner=0 --group=0 -cf - qt | xz -2 -T 0 > "$1/kept/qt.tar.xz" &&
        qtSourceVersion > "$1/kept/version" &&
        (cd "$1/kept" && sha256sum qt.tar.xz version > digest)
}

# makeQt KEPT: builds Qt in a temporary folder beside KEPT, which takes 11 minutes on two idle processors.
makeQt() {
    local work step
    work=$(mktemp -d "$qtCache/making.XXXXXX") || return
    for step in fetchQt configureQt compileQt installQt packQt; do
        echo "  $step ($(date +%T))"
        if ! "$step" "$work"; then
            tail -n 40 "$work/log"
            echo "Qt was not built: $step failed; see $work/log." >&2
            return 1
        fi
    done
    mv "$work/kept" "$1" && rm -rf "$work"
}

# keepQt: makes sure that Qt is in the cache. Only one process makes it; others wait.
keepQt() (
    mkdir -p "$qtCache"
    exec {lock}> "$qtCache/lock"
    flock "$lock"
    kept=$qtCache/qt-$(qtKey)
    if qtIsKept "$kept"; then
        touch "$kept"
        echo "Qt is kept in $kept."
        exit 0
    fi
    rm -rf "$qtCache"/making.* # whoever made these was ended
    makeQt "$kept" {lock}>&- && forgetOldQts
)

# forgetOldQts: removes all but the three that were used last; other checkouts may want another one than this.
forgetOldQts() {
    local most=3
    # shellcheck disable=SC2012  # the names are digests
    ls -dt "$qtCache"/qt-* | tail -n +$((most + 1)) | xargs -r rm -rf
}

# unpackQt FOLDER: the kept Qt as FOLDER/qt.
unpackQt() {
    rm -rf "$1/qt" && mkdir -p "$1" && tar -C "$1" -xf "$qtCache/qt-$(qtKey)/qt.tar.xz"
}
