#!/bin/bash
# Gathers the notices of everything that is linked into the Windows programs, one text a library:
# `notices.sh folder`. They are the copyright files of the source packages that cmake/deps.sh has
# built, and those of the compiler's libraries and of zlib, which are linked as Debian brings them.
# Texts that the files only refer to are put beside them.

set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
target=$1
libraries=$("$root/cmake/deps.sh" path windows)
mkdir -p "$target"

# Notepad shows either line end, but other programs of Windows want both characters.
Store() { sed 's/\r*$/\r/' "$1" >"$target/$2.txt"; }
Line() { printf '%-26s %-28s %s\r\n' "$1" "$2" "$3" >>"$target/Contents.txt"; }

{
    printf '%s\r\n' "Plenoviz is built with the libraries below. Each has a text of its own in this" \
        "folder. What these texts call a file in /usr/share/common-licenses is here as well." \
        "" \
        "FreeImage is used under the FreeImage Public License (the text calls it FIPL), version" \
        "1.0. Its source code and that of all the others is in the source packages of Debian:" \
        "https://www.debian.org/distrib/packages" ""
} >"$target/Contents.txt"

while read -r name version; do
    Store "$libraries/share/doc/$name/copyright" "$name"
    Line "$name" "$version" "$name.txt"
done < <(sort "$libraries/versions.txt")
for package in libz-mingw-w64-dev gcc-mingw-w64-base mingw-w64-x86-64-dev; do
    Store "/usr/share/doc/$package/copyright" "$package"
    Line "$package" "$(dpkg-query -W -f '${Version}' "$package")" "$package.txt"
done

# A name without a number means the newest version of that text.
while read -r name; do
    if [[ -f /usr/share/common-licenses/$name ]]; then
        Store "/usr/share/common-licenses/$name" "$name"
    fi
done < <(grep -oh '/usr/share/common-licenses/[A-Za-z0-9.-]*[A-Za-z0-9]' "$target"/*.txt |
    sed 's|.*/||' | sort -u)
