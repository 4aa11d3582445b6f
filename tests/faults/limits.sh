#!/bin/bash
# Sizes, numbers and memory at their limits:
#
#   limits.sh PLENOVIZ_CLI          what is cheap
#   limits.sh PLENOVIZ_CLI --all    pictures of 200 megapixels as well: minutes and 12 GB of memory
#
# Work is done, or refused in one line; nothing crashes, hangs or leaves half a file.

set -uo pipefail
# The date of change that results get: the same picture is the same bytes then.
export SOURCE_DATE_EPOCH=1700000000
cli=$(realpath "$1")
all=${2:-}
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work" || exit 1
failures=0

Complain() { echo "limits: $*" >&2; failures=$((failures + 1)); }

# Expect CODE TEXT COMMAND...: CODE may be a pattern.
Expect()
{
    local code=$1 text=$2 said got
    shift 2
    said=$("$@" 2>&1 </dev/null)
    got=$?
    [[ $got == $code ]] || Complain "exit code $got instead of $code: ${*:0:80} (${said:0:300})"
    [[ $said == *"$text"* ]] || Complain "'$text' is not said: ${*:0:80} (${said:0:300})"
}

Picture() # WIDTH HEIGHT, a portable map of noise
{
    printf 'P6 %d %d 255\n' "$1" "$2"
    head -c $(($1 * $2 * 3)) /dev/urandom
}

# Long and thin.
for size in '30000 1' '1 30000' '30000 6' '6 30000' '1 1' '7 5'; do
    read -r width height <<<"$size"
    Picture "$width" "$height" >thin.ppm
    fits=0
    ((width < 6 || height < 6)) && fits=1
    Expect $fits "$( ((fits)) && echo 'at least 6 pixels')" "$cli" fuse -o out.png thin.ppm
    for command in 'single --noise high' daylight-up daylight-down; do
        # shellcheck disable=SC2086 # the words are options
        Expect $fits "" "$cli" $command -o out.png thin.ppm
    done
    Expect 0 "" "$cli" tone-map --luminance-only -o out.tif thin.ppm
    Expect 0 "" "$cli" smart-contrast --lod 30,30,30,30,30,30,30,30 -o out.jpg thin.ppm
done

# As many sources as a series has, and many more.
Picture 64 48 >source.ppm
many=()
for ((i = 0; i < 39; i++)); do many+=(source.ppm); done
Expect 0 "39 pictures" "$cli" fuse -o out.png "${many[@]}"
Expect 0 "390 pictures" "$cli" fuse -o out.png "${many[@]}" "${many[@]}" "${many[@]}" \
    "${many[@]}" "${many[@]}" "${many[@]}" "${many[@]}" "${many[@]}" "${many[@]}" "${many[@]}"

# Paths up to 1023 bytes can be saved to, longer ones are refused; reading knows no such limit.
piece=$(printf 'ordner-%.0s' {1..20})
deep=$work
while ((${#deep} + ${#piece} + 1 < 900)); do deep+=/$piece; done
name=$(printf 'n%.0s' {1..255})
mkdir -p "$deep"
path=$deep/${name:0:$((1023 - ${#deep} - 1 - 4))}.png
((${#path} == 1023)) || Complain "the path has ${#path} bytes"
Expect 0 "" "$cli" fuse -o "$path" source.ppm
Expect 2 "would overwrite the input" "$cli" fuse -o "$path" "$path"
Expect 2 "too long" "$cli" fuse -o "${path%.png}x.png" source.ppm
deep+=/$piece/$piece
mkdir -p "$deep"
cp source.ppm "$deep/source.ppm"
Expect 0 "" "$cli" fuse -o out.png "$deep/source.ppm"

# Several at once, over each other and into one folder: the last one wins, nothing gets mixed up.
"$cli" fuse -q -o one.png source.ppm
for ((i = 0; i < 8; i++)); do
    "$cli" fuse -q -o shared.png source.ppm &
    "$cli" series --out-dir shared daylight-up source.ppm >series-$i.txt &
done
wait
cmp -s one.png shared.png || Complain "savers at once have spoiled the file"
[[ $(ls -A shared | wc -l) == 39 ]] || Complain "wrong files in the shared folder: $(ls -A shared)"
Expect 0 "39 pictures" "$cli" fuse -o out.png shared/*.tif

# Little memory: the work is done or refused, whatever step it is that finds none.
Picture 1400 1000 >large.ppm
"$cli" fuse -q -o large.jpg large.ppm
Limited() { (ulimit -v "$1"; shift; exec timeout 60 "$@"); }
done=0 refused=0
for ((megabytes = 35; megabytes <= 110; megabytes += 5)); do
    for command in fuse smart-contrast; do
        rm -f out.png
        said=$(Limited $((megabytes * 1024)) "$cli" $command -q --threads 2 -o out.png large.jpg 2>&1)
        case $? in
        0) done=$((done + 1)) ;;
        1 | 127) # 127: not even the program could be loaded
            refused=$((refused + 1))
            [[ -n $said && ! -e out.png ]] || Complain "no word or half a file at $megabytes MB"
            ;;
        *) Complain "$command ends with $? at $megabytes MB: $said" ;;
        esac
    done
done
echo "little memory: $done done, $refused refused"

# A scene that repeats itself every 512 rows, 39 times: what a tool makes of it repeats itself as
# well, away from the edges. Sizes that overflow anywhere would show.
Repeats() # FILE TOLERANCE
{
    local block=$((10000 * 3 * 512)) worst
    worst=$(cmp -l <(tail -c +$((55 + 18 * block)) "$1" | head -c $block) \
        <(tail -c +$((55 + 22 * block)) "$1" | head -c $block) |
        awk 'function Octal(n) { return int(n / 100) * 64 + int(n / 10) % 10 * 8 + n % 10 }
             { off = Octal($2) - Octal($3); if (off < 0) off = -off; if (off > worst) worst = off }
             END { print worst + 0 }')
    echo "  rows of the middle are $worst apart"
    ((worst <= $2)) || Complain "${*:3}: rows of the middle are $worst apart"
}
if [[ $all == --all ]]; then
    "$cli" sample -q --width 10000 --height 512 --frames 1 --out-dir .
    "$cli" fuse -q -o strip.bmp sample_1.jpg
    {
        printf 'P6 10000 19968 255\n'
        for ((i = 0; i < 39; i++)); do tail -c +55 strip.bmp; done
    } >huge.ppm
    while read -r tolerance command; do
        rm -f huge.bmp
        # shellcheck disable=SC2086 # the words are options
        Expect 0 "" /usr/bin/time -o cost -f '%U + %S s, %M kB' "$cli" $command -o huge.bmp huge.ppm
        echo "200 megapixels, $command: $(tail -n 1 cost)"
        [[ $(stat -c %s huge.bmp) == $((54 + 10000 * 19968 * 3)) ]] || Complain "$command: wrong size"
        Repeats huge.bmp "$tolerance" "$command"
    done <<'END'
0 fuse
0 smart-contrast --lod 15,12,10,10,10,10,10,10
2 tone-map --luminance-only
2 tone-map
0 single --noise none
0 single --noise low
0 daylight-up --power 10
0 daylight-down --power 39
END
fi

echo "$failures complaints"
exit $((failures > 0))
