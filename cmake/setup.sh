#!/bin/bash
# Installs the Debian packages that a build needs: `setup.sh native` for the program itself on this
# machine, `setup.sh package` for what ./package makes, `setup.sh all` for everything that ./check
# does. Silent when nothing is missing.

set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
level=${1:-native}

native=(g++ cmake ninja-build libtbb-dev googletest libbenchmark-dev dpkg-dev)
native+=(libfreeimage-dev libjpeg-dev libpng-dev libtiff-dev libwebp-dev libraw-dev liblcms2-dev)
native+=(zlib1g-dev libimage-exiftool-perl)
# Windows: compiler, zlib, the assembler of the JPEG library; three draw the images and pack the icon.
windows=(g++-mingw-w64-x86-64-posix libz-mingw-w64-dev nasm librsvg2-bin icoutils imagemagick)
packing=(nsis zip unzip)
# Wine to run the tests, and a screen that nobody sees with a hand on it. wine32 and the screen
# drivers are only recommended packages, so they stay away. The fonts are those of all languages.
showing=(wine wine64 xvfb xdotool fonts-dejavu-core fonts-droid-fallback)
linting=(clang-format-14 clang-tidy-14 lintian)

case $level in
native) packages=("${native[@]}") ;;
package) packages=("${native[@]}" "${windows[@]}" "${packing[@]}") ;;
all) packages=("${native[@]}" "${windows[@]}" "${packing[@]}" "${showing[@]}" "${linting[@]}") ;;
*) echo "setup.sh: unknown level '$level' (native, package or all)" >&2; exit 2 ;;
esac

# The stamp names the packages and the state of the package database they were seen in, so a stamp
# from another machine or from before a removal does not count.
database=/var/lib/dpkg/status
stamp=$root/build/setup-$level.stamp
Key() { echo "${packages[*]} $(stat -c '%i %Y %s' $database 2>/dev/null)"; }
[[ -f $stamp && $(<"$stamp") == "$(Key)" ]] && exit 0

Missing()
{
    local name
    for name in "${packages[@]}"; do
        [[ $(dpkg-query -W -f '${db:Status-Status}' "$name" 2>/dev/null) == installed ]] || echo "$name"
    done
}

mkdir -p "$root/build"
log=$root/build/setup.log
exec 8>"$root/build/setup.lock"
flock 8

if ! command -v apt-get >/dev/null; then
    echo "setup.sh: needs a Debian 12 system with apt (see docs for other systems)" >&2
    exit 1
fi
mapfile -t missing < <(Missing)
if ((${#missing[@]})); then
    if ((EUID != 0)); then
        echo "setup.sh: run this once as root: apt-get install ${missing[*]}" >&2
        exit 1
    fi
    echo "Installing ${#missing[@]} Debian packages: ${missing[*]}" >&2
    Install()
    {
        DEBIAN_FRONTEND=noninteractive apt-get install -y --no-install-recommends \
            -o DPkg::Lock::Timeout=300 -o Acquire::Retries=3 "${missing[@]}" </dev/null >>"$log" 2>&1
    }
    # The package lists are fetched only when what is there does not lead to the packages.
    : >"$log"
    if ! Install; then
        echo "Updating the package lists" >&2
        { apt-get update </dev/null >>"$log" 2>&1 && Install; } || {
            tail -n 20 "$log" >&2
            echo "setup.sh: packages could not be installed; all of it is in $log" >&2
            exit 1
        }
    fi
fi
Key >"$stamp"
