#!/bin/bash
# notices.sh BUNDLE
# Writes BUNDLE/licenses: who made the libraries in BUNDLE, in which version, under which terms, and where their sources
# are. Each must be, byte for byte, a file of an installed Debian package.
set -euo pipefail
shopt -s inherit_errexit # or a failure within $(...) is only the end of what is printed
export LC_ALL=C

bundle=${1:?usage: notices.sh BUNDLE}
licenses=$bundle/licenses
index=$licenses/THIRD-PARTY-NOTICES.txt

# original FILE: the installed file that a bundled one was copied from.
original() {
    local name=${1##*/} folder
    for folder in /usr/lib/x86_64-linux-gnu /lib/x86_64-linux-gnu /usr/lib/x86_64-linux-gnu/qt5/plugins/platforms; do
        if [ -f "$folder/$name" ]; then
            if ! cmp -s "$1" "$folder/$name"; then
                echo "notices.sh: $name is not as $folder has it" >&2
                return 1
            fi
            echo "$folder/$name"
            return
        fi
    done
    echo "notices.sh: no installed file is called $name" >&2
    return 1
}

# packageOf FILE: the package of an installed file; packages from before the merge of /lib with /usr/lib know it there.
packageOf() {
    { dpkg-query -S "$1" || dpkg-query -S "${1#/usr}"; } 2> /dev/null | head -n 1 | sed 's/: .*//'
}

# listPackages: for each bundled library, its package and its name.
listPackages() {
    local file path package
    while read -r file; do
        path=$(original "$file") || return
        package=$(packageOf "$path") || package=
        if [ -z "$package" ]; then
            echo "notices.sh: no package has $path" >&2
            return 1
        fi
        echo "$package ${file#"$bundle"/}"
    done < <(find "$bundle/lib" "$bundle/plugins" -type f | sort)
}

# describe PACKAGE: its entry in the index.
describe() {
    local version source sourceVersion
    version=$(dpkg-query -W -f='${Version}' "$1")
    source=$(dpkg-query -W -f='${source:Package}' "$1")
    sourceVersion=$(dpkg-query -W -f='${source:Version}' "$1")
    printf '\n%s, Debian version %s\n' "${1%:*}" "$version"
    awk -v package="$1" '$1 == package { print "    " $2 }' <<< "$files"
    printf '  terms:   licenses/%s.txt\n' "${1%:*}"
    printf '  sources: https://snapshot.debian.org/package/%s/%s/\n' "$source" "$sourceVersion"
}

# The licences that Debian keeps once, and the terms only name.
copyCommonLicenses() {
    local name
    mkdir "$licenses/common"
    { grep -ohE '/usr/share/common-licenses/[A-Za-z0-9.-]*[A-Za-z0-9]' "$licenses"/*.txt || true; } | sort -u |
        while read -r name; do
            if [ -e "$name" ]; then
                cp -L "$name" "$licenses/common/"
            fi
        done
}

rm -rf "$licenses"
mkdir "$licenses"
files=$(listPackages)
if [ -z "$files" ]; then
    echo "notices.sh: no library is in $bundle" >&2
    exit 1
fi
mapfile -t packages < <(cut -d ' ' -f 1 <<< "$files" | sort -u)
for package in "${packages[@]}"; do
    cp -L "/usr/share/doc/${package%:*}/copyright" "$licenses/${package%:*}.txt"
done
copyCommonLicenses
{
    cat << 'END'
Third-party notices

The folders lib and plugins hold shared libraries of others, unchanged, as the operating system Debian distributes
them. Each stays under its own terms; where these terms name a file in /usr/share/common-licenses, it is in
licenses/common. You may replace any of these libraries with your own build of it: the updater loads whatever lies in
lib under that name. This also holds for those under the GNU Lesser General Public License, such as Qt.
The complete source code of each is at the address given.
END
    for package in "${packages[@]}"; do
        describe "$package"
    done
} > "$index"
