#!/bin/bash
# Installs, uses and removes what ./package makes for Debian, and asks whether the manual page knows
# every command and option that the program knows.

set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
failed=0
Complain() { echo "$1" >&2; failed=1; }

"$root/package" --out-dir "$scratch" linux
"$root/package" --out-dir "$scratch/again" linux
for file in "$scratch/again"/*; do
    cmp "$file" "$scratch/${file##*/}" || Complain "the same sources give other bytes"
done

system=$scratch/system
mkdir -p "$system"/var/lib/dpkg/{info,updates}
touch "$system/var/lib/dpkg/status"
Dpkg() { dpkg --root="$system" --force-not-root --force-depends "$@" >"$scratch/dpkg.log" 2>&1; }
Dpkg -i "$scratch"/*.deb || Complain "dpkg does not install it: $(<"$scratch/dpkg.log")"
[[ $(dpkg-deb -f "$scratch"/*.deb Depends) == *libfreeimage3*libtbb12* ]] || Complain "depends on too little"
lintian=$(lintian --allow-root --fail-on error,warning "$scratch"/*.deb 2>&1) || Complain "lintian: $lintian"
tar -C "$scratch" -xzf "$scratch"/*.tar.gz
for program in "$system/usr/bin/plenoviz-cli" "$scratch"/plenoviz-cli-*/bin/plenoviz-cli; do
    "$program" sample --quiet --out-dir "$scratch/series" --width 90 --height 60 --frames 2
    "$program" fuse --quiet -o "$scratch/fused.png" "$scratch"/series/*.jpg
    [[ -s $scratch/fused.png ]] || Complain "$program does not fuse"
    rm -r "$scratch/series" "$scratch/fused.png"
done

# Loaded anywhere, tables of addresses that are filled at the start and locked then, no code on the stack.
program=$system/usr/bin/plenoviz-cli
[[ $(readelf -hW "$program") == *'DYN (Position-Independent'* ]] || Complain "not loaded anywhere"
segments=$(readelf -lW "$program")
[[ $segments == *GNU_RELRO* && $(readelf -dW "$program") == *NOW* ]] || Complain "its tables can be written"
grep -q 'GNU_STACK.* RW ' <<<"$segments" || Complain "code can be on its stack"

manual=$(zcat "$system/usr/share/man/man1/plenoviz-cli.1.gz" | sed 's/\\-/-/g')
[[ $manual != *@* ]] || Complain "the manual has gaps"
commands=$("$system/usr/bin/plenoviz-cli" --help | sed -n '/^Commands/,/^$/s/^  \([a-z-]*\) .*/\1/p')
[[ $commands == *fuse*sample* ]] || Complain "no commands in the help"
for command in $commands; do
    for word in "$command" $("$system/usr/bin/plenoviz-cli" "$command" --help | grep -o '^ *\(-[a-z], \)\?--[a-z-]*' | grep -o -- '--.*'); do
        grep -qE -- "(^| |[^a-z-])$word([^a-z-]|$)" <<<"$manual" || Complain "the manual does not know $command $word"
    done
done

Dpkg -P plenoviz-cli
[[ -z $(find "$system/usr" -type f 2>/dev/null) ]] || Complain "left after the removal: $(find "$system/usr" -type f)"
exit $failed
