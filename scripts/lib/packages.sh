# shellcheck shell=bash
# The Debian packages that the scripts need, and how the missing ones are installed. Sourced, not run.
# shellcheck disable=SC2034  # the lists are for those who source this

buildPackages=(build-essential ccache cmake git libhidapi-dev libsodium-dev minisign ninja-build pkg-config qtbase5-dev)
# To run the program unattended: a screen, a window manager, fonts, input; and the update server.
stagePackages=(fonts-dejavu-core libx11-dev libxtst-dev nginx-light openbox xvfb)
benchPackages=(libbenchmark-dev libxcb1-dev xdotool xvfb)
checkPackages=(appstream at-spi2-core binutils clang-format clang-tidy dbus dbus-daemon desktop-file-utils icoutils
    libglib2.0-bin lld openssl python3-dbusmock python3-pyatspi shellcheck valgrind xdotool)
guidePackages=(cmark-gfm)
# The guest whose USB bus the tests use.
guestPackages=(busybox-static cpio kmod libhidapi-dev linux-image-amd64 qemu-system-x86 sudo systemd udev x11-utils)
fuzzPackages=(clang libclang-rt-dev)
bundlePackages=(binutils)
bundleCheckPackages=(bubblewrap debian-archive-keyring mmdebstrap openssl)
# To build and pack for Windows, and to try that under Wine.
windowsPackages=(dpkg-dev fonts-wine g++-mingw-w64-x86-64-posix icoutils openssl patch perl unzip wine wine64 xauth
    xvfb xz-utils zip)
picturePackages=(imagemagick x11-utils x11-xserver-utils)

isInstalled() {
    [ "$(dpkg-query -W -f='${db:Status-Status}' "$1" 2> /dev/null)" = installed ]
}

# A web server installed along the way must not start serving this machine.
keepServerQuiet() {
    if [ -d /run/systemd/system ]; then
        "$@" systemctl disable --now nginx.service > /dev/null 2>&1 || true
    fi
}

# installMissing PACKAGE...: installs the missing ones, as root or with sudo. If that is not possible, or not wanted
# (TALVEX_NO_INSTALL is set), says what to do and returns 1.
installMissing() {
    local missing=() asRoot=() package
    if ! command -v apt-get > /dev/null; then
        echo "This is not a Debian system (apt-get is missing). Required packages: $*" >&2
        return 1
    fi
    for package in "$@"; do
        isInstalled "$package" || missing+=("$package")
    done
    if [ ${#missing[@]} -eq 0 ]; then
        return 0
    fi
    if [ -n "${TALVEX_NO_INSTALL:-}" ]; then
        echo "Packages are missing. As root: apt-get install ${missing[*]}" >&2
        return 1
    fi
    echo "Installing: ${missing[*]}"
    if [ "$(id -u)" -ne 0 ]; then
        asRoot=(sudo)
    fi
    if [ ${#asRoot[@]} -gt 0 ] && ! command -v sudo > /dev/null; then
        echo "Packages are missing and there is no sudo. As root: apt-get install ${missing[*]}" >&2
        return 1
    fi
    if ! "${asRoot[@]}" apt-get update ||
        ! "${asRoot[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -y --no-install-recommends \
            "${missing[@]}"; then
        echo "The packages could not be installed. As root: apt-get install ${missing[*]}" >&2
        return 1
    fi
    case " ${missing[*]} " in
        *" nginx-light "*) keepServerQuiet "${asRoot[@]}" ;;
    esac
}
