#!/bin/bash
# Types every command of README and guide as a reader would, in a folder with the photographs that
# the texts speak of: `guide_commands.sh PROGRAM`. Commands are the blocks marked "sh"; what is marked
# "text" builds or tests everything, or needs a window. Pictures and links have to be there as well.

set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
program=$(realpath "$1") count=0 failed=0
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
Complain() { echo "$1" >&2; failed=1; }

mkdir "$scratch/bin"
ln -s "$program" "$scratch/bin/plenoviz-cli"
export PATH=$scratch/bin:$PATH
for text in README.md docs/guide.md; do
    here=$scratch/$(basename "$text" .md)
    mkdir -p "$here/holiday"
    cd "$here"
    plenoviz-cli sample --quiet --width 120 --height 80 --frames 3 --out-dir .
    cp sample_2.jpg photo.jpg
    cp sample_1.jpg holiday/beach.jpg
    cp sample_3.jpg holiday/market.jpg
    mv sample_1.jpg dark.jpg && mv sample_2.jpg middle.jpg && mv sample_3.jpg bright.jpg
    printf '#!/bin/sh\nexec plenoviz-cli "$@"\n' >run
    chmod +x run

    while IFS= read -r command; do
        count=$((count + 1))
        bash -ec "$command" >"$scratch/said" 2>&1 </dev/null ||
            Complain "$text: '$command' fails: $(<"$scratch/said")"
        if [[ $command =~ \ (-o|--out-dir)\ ([^ ]+) ]]; then
            [[ -s ${BASH_REMATCH[2]} ]] || Complain "$text: '$command' writes nothing"
        fi
    done < <(sed -n '/^```sh$/,/^```$/p' "$root/$text" | grep -v '^```')

    cd "$(dirname "$root/$text")"
    while IFS= read -r link; do
        case $link in
        \#*) grep -qix "##* $(tr - ' ' <<<"${link#\#}")" "$root/$text" || Complain "$text: no section $link" ;;
        *) [[ -e $link ]] || Complain "$text: no file $link" ;;
        esac
    done < <(grep -o ']([^)]*)' "$root/$text" | sed 's/^](//; s/)$//')
done
((count > 15)) || Complain "only $count commands found"

cd "$root/docs/pictures"
for picture in *; do
    grep -q "pictures/$picture)" ../guide.md || Complain "nobody shows $picture"
    (($(stat -c %s "$picture") <= 60 * 1024)) || Complain "$picture is large"
done
exit $failed
