#!/bin/bash
# The command line from outside, `command_line.sh PROGRAM...`: exit codes, messages, files. All names
# are relative, so that a program under wine sees the same ones.
#
# Pictures are plain PGM and PPM files made here. Results are compared as BMP files, whose bytes
# follow from the pixels alone: the sums below hold for every system, thread count and instruction
# set, and were taken from results that agreed with the engine's own.

set -uo pipefail
# The date of change that results get: the same picture is the same bytes then.
export SOURCE_DATE_EPOCH=1700000000
program=("$@") failed=0 counted=0
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
cd "$folder" || exit 1

Complain()
{
    echo "$1" >&2
    failed=1
}

# Cli ARGUMENTS: output is in files out and err, the exit code in $code.
Cli()
{
    "${program[@]}" "$@" >"$folder/out" 2>"$folder/err" </dev/null
    code=$?
    sed -i 's/\r$//' "$folder/out" "$folder/err" # of Windows
    counted=$((counted + 1))
}

# Works ARGUMENTS / Fails CODE REASON ARGUMENTS: a failure is one line, and nothing else is said.
Works()
{
    Cli "$@"
    ((code == 0)) || Complain "exit code $code of: $* ($(<err))"
}
Fails()
{
    Cli "${@:3}"
    ((code == $1)) || Complain "exit code $code, not $1, of: ${*:3}"
    [[ $(<err) == "plenoviz-cli: $2"* ]] || Complain "said '$(<err)', not '$2', of: ${*:3}"
    [[ ! -s out && $(wc -l <err) == 1 ]] || Complain "more than one line of: ${*:3}"
}
Says() { [[ $(<out) == *"$1"* ]] || Complain "not said: $1, but: $(<out)"; }
# Sum FILE NUMBER: the known answer of a result.
Sum()
{
    local sum
    sum=$(cksum <"$1")
    [[ ${sum% *} == "$2" ]] || Complain "$1 is ${sum% *}, not $2"
}
Same() { cmp -s "$1" "$2" || Complain "$1 differs from $2"; }
Differs() { cmp -s "$1" "$2" && Complain "$1 is the same as $2"; }
LastByte() { tail -c 1 "$1" | od -An -tu1 | tr -d ' '; }

# Picture NAME KIND WIDTH HEIGHT TOP LIGHT: P5 grey or P6 colour, TOP 255 or 65535, with slopes,
# blocks and grain; more light clips more of it.
Picture()
{
    {
        printf '%s\n%d %d\n%d\n' "$2" "$3" "$4" "$5"
        LC_ALL=C awk -v kind="$2" -v w="$3" -v h="$4" -v top="$5" -v light="$6" 'BEGIN {
            seed = 1
            for (y = 0; y < h; y++) for (x = 0; x < w; x++) for (c = 0; c < (kind == "P6" ? 3 : 1); c++) {
                seed = (seed * 1103 + 12345) % 65536
                v = (x * 150 / w + int(y / 7) % 2 * 40 + c * 15 + seed % 16) * light
                v = int(v > 255 ? top : v * top / 255)
                if (top > 255) printf "%c", int(v / 256)
                printf "%c", v % 256
            } }'
    } >"$1"
}
Picture dark.ppm P6 40 30 255 0.4
Picture mid.ppm P6 40 30 255 1
Picture bright.ppm P6 40 30 255 2.5
Picture deep.ppm P6 40 30 65535 1
Picture grey.pgm P5 40 30 255 1
Picture wide.ppm P6 41 30 255 1
Picture thin.ppm P6 40 5 255 1
Picture room.ppm P6 200 150 255 1
Picture photo.ppm P6 70 52 65535 1
{ printf 'P5\n8 8\n255\n' && printf '\62%.0s' {1..64}; } >50.pgm
{ printf 'P5\n8 8\n255\n' && printf '\310%.0s' {1..64}; } >200.pgm
# Eight by eight pixels, upside down as BMP files are, with alpha 200.
{
    printf 'BM\66\1\0\0\0\0\0\0\66\0\0\0\50\0\0\0\10\0\0\0\10\0\0\0\1\0\40\0\0\0\0\0\0\1\0\0'
    printf '\0\0\0\0%.0s' 1 2 3 4
    for ((i = 0; i < 64; i++)); do printf '\60\120\160\310'; done
} >veil.bmp
printf '\1\2\3\4' >junk.dat

# Wrong command lines: nothing is written, and the words say what to do about it.
help='; see plenoviz-cli fuse --help'
Fails 2 'no command is given; see plenoviz-cli --help'
Fails 2 "unknown command 'fusion'" fusion
Fails 2 "unknown option '-q'; see plenoviz-cli --help" -q fuse
Fails 2 "--output OUT is missing$help" fuse mid.ppm
Fails 2 "--output needs a value that is not empty$help" fuse -o '' mid.ppm
Fails 2 "no picture to work on is given$help" fuse -o o.jpg
Fails 2 "unknown option '--expose'$help" fuse --expose 5
Fails 2 "unknown option '--frames'$help" fuse --frames 3
Fails 2 "unknown option '-x'$help" fuse -x
Fails 2 "--exposure needs a value$help" fuse a --exposure
Fails 2 "--quiet takes no value$help" fuse --quiet=1
Fails 2 "unexpected argument 'extra'; see plenoviz-cli sample --help" sample --out-dir d extra
for number in 47 161 '' ' 100' 1e2 0x64 +100 99999999999999999999; do
    Fails 2 "--exposure takes a whole number from 48 to 160, not '$number'$help" \
        fuse -o o.jpg --exposure "$number" mid.ppm
done
Fails 2 "--align takes auto or off, not 'auto|off'$help" fuse -o o.jpg --align 'auto|off' mid.ppm
Fails 2 'give either --output OUT or --out-dir DIR' tone-map mid.ppm
Fails 2 'give either --output OUT or --out-dir DIR' tone-map -o o.png --out-dir d mid.ppm
Fails 2 'several pictures need --out-dir' tone-map -o o.png mid.ppm mid.ppm
mkdir other
cp mid.ppm other/mid.ppm
Fails 2 "'other/mid.ppm' and another input would both become d" \
    tone-map --out-dir d mid.ppm other/mid.ppm
Fails 2 '--contrast takes a whole number from 1 to 50' tone-map --contrast 51 -o o.png mid.ppm
Fails 2 '--noise takes none, low, medium or high' single --noise some -o o.png mid.ppm
for levels in 1,2,3 1,2,3,4,5,6,7,8,9 1,2,3,4,5,6,7,31; do
    Fails 2 '--lod takes eight numbers from 0 to 30' smart-contrast --lod $levels -o o.png mid.ppm
done
Fails 2 '--power takes a whole number from 3 to 39' daylight-up --power 2 -o o.png mid.ppm
Fails 2 "unknown series 'double'" series double --out-dir d mid.ppm
Fails 2 'a series is made from one picture' series single --out-dir d mid.ppm mid.ppm
[[ ! -e o.png && ! -e o.jpg && ! -e d ]] || Complain "a wrong command line wrote something"

Works --help && Says 'smart-contrast'
Works --version && Says 'plenoviz-cli '
Works sample -h && Says '--frames N'
Works fuse -h && Says 'file to write: .jpg .jpeg .png .tif .tiff or .bmp'
Works smart-contrast -h && Says '--jpeg-quality N'
awk 'length > 80 { exit 1 }' out || Complain "the help is wider than a terminal: $(<out)"
Fails 2 "unknown option '--jpeg-quality'" series --jpeg-quality 90 --out-dir d single mid.ppm

# Failures of the work: one line that names the file, and the old result stays.
echo old >old.jpg
cp old.jpg old.gif
Fails 1 'none.jpg: no such file' fuse -o old.jpg none.jpg
Fails 1 'junk.dat: not a known image format' fuse -o old.jpg mid.ppm junk.dat
Fails 1 'thin.ppm: the picture is 40 x 5; fusion needs at least 6' fuse -o old.jpg thin.ppm
Fails 1 'wide.ppm: the picture is 41 x 30, 8-bit colour, but the first one is 40 x 30, 8-bit colour' \
    fuse -o old.jpg mid.ppm wide.ppm
Fails 1 'deep.ppm: the picture is 40 x 30, 16-bit colour' fuse -o old.jpg mid.ppm deep.ppm
Fails 1 'grey.pgm: the picture is 40 x 30, 8-bit grey' fuse -o old.jpg mid.ppm grey.pgm
Fails 1 'old.jpg: JPEG files cannot hold 16-bit pictures; use .tif or .png' \
    fuse -o old.jpg deep.ppm deep.ppm
Fails 2 'old.gif: the name must end in .bmp, .jpg, .jpeg, .tif, .tiff or .png' \
    fuse -o old.gif mid.ppm
Fails 2 'missing/o.jpg: the file cannot be created' fuse -o missing/o.jpg mid.ppm
[[ $(<old.jpg) == old && $(<old.gif) == old ]] || Complain "a failed command touched its output"

# A result replaces a file as a whole or not at all, in every format.
for name in old.bmp old.jpg old.tif old.png; do
    echo old >$name
    chmod a-w $name
    Fails 2 "$name: the file cannot be created" fuse -o $name mid.ppm
    chmod u+w $name
    if [[ ${program[0]} != *wine.sh ]]; then
        for blocks in 0 1; do # a limit on file sizes fails a write as a full disk does
            # The thread sanitizer writes a file before the program can keep the signal away.
            said=$([[ $blocks == 1 ]] || trap '' XFSZ
                ulimit -f $blocks && "${program[@]}" fuse -o $name room.ppm 2>&1 || echo " code $?")
            [[ $said == "plenoviz-cli: $name: "*' code 1' ]] || Complain "a full disk: $said"
        done
    fi
    [[ $(<$name) == old ]] || Complain "$name was touched"
done
mkdir folder.png
Fails 2 'folder.png: ' fuse -o folder.png mid.ppm
[[ $(echo .[!.]* *~ *.tmp) == '.[!.]* *~ *.tmp' ]] || Complain "left behind: $(ls -A)"
if [[ ${program[0]} != *wine.sh ]]; then
    mkfifo pipe.png
    Fails 2 'pipe.png: ' fuse -o pipe.png mid.ppm
    [[ -p pipe.png ]] || Complain "a pipe was replaced"
    # Links stay links, and the file at their end keeps its permissions.
    mkdir real
    echo old >real/a.bmp
    chmod 640 real/a.bmp
    ln -s real/a.bmp one.bmp
    ln -s one.bmp two.bmp
    ln -s real/new.bmp dangling.bmp
    ln -s loop.bmp loop.bmp
    Works fuse -q -o two.bmp mid.ppm
    [[ -L two.bmp && -L one.bmp && $(stat -c %a real/a.bmp) == 640 ]] || Complain "links: $(ls -l)"
    Works fuse -q -o dangling.bmp mid.ppm
    Same real/new.bmp real/a.bmp
    Fails 2 'loop.bmp: ' fuse -o loop.bmp mid.ppm
fi

# Fusion: two greys as calculated by hand, then everything together.
for row in '48 50' '100 67' '128 134' '160 191'; do
    Works fuse --exposure "${row% *}" -o flat.bmp 50.pgm 200.pgm
    [[ $(LastByte flat.bmp) == "${row#* }" ]] || Complain "exposure ${row% *} gives $(LastByte flat.bmp)"
done
Says 'flat.bmp: 8 x 8, 8-bit grey, fused from 2 pictures'
Works fuse dark.ppm --exposure=120 -q mid.ppm --output fused.bmp bright.ppm
[[ ! -s out && ! -s err ]] || Complain "--quiet says something"
Sum fused.bmp 3546406845
# The same bytes on one thread, where nothing is read ahead. Of a repeated option the last one counts;
# letters may stand behind one dash, with a value of the last one.
Works fuse --threads 1 --exposure 90 --exposure 120 -o first.bmp -qoone.bmp -- dark.ppm mid.ppm bright.ppm
Same one.bmp fused.bmp
[[ ! -s out && ! -e first.bmp ]] || Complain "-qo is not two options"
Fails 2 "unknown option '-qz'$help" fuse -qz mid.ppm
Fails 2 "--output needs a value$help" fuse mid.ppm -qo
cp mid.ppm -- '--exposure'
Works fuse -q -o dashes.bmp -- --exposure
Works fuse -q -o plain.bmp mid.ppm
Same dashes.bmp plain.bmp
cp mid.ppm 'zażółć 写真.ppm'
Works fuse -q -o 'wynik ł 写.bmp' 'zażółć 写真.ppm'
Same 'wynik ł 写.bmp' plain.bmp
Works fuse -q --jpeg-quality 20 -o coarse.jpg mid.ppm
Works fuse -q -o fine.jpeg mid.ppm
(($(stat -c %s coarse.jpg) < $(stat -c %s fine.jpeg))) || Complain "--jpeg-quality changes nothing"

# Alpha travels with a photograph; a format without it drops it and says so.
Works smart-contrast -o out.bmp veil.bmp
[[ $(LastByte out.bmp) == 200 ]] || Complain "alpha is $(LastByte out.bmp)"
for command in single daylight-up tone-map; do
    Works "$command" -q -o "$command.bmp" veil.bmp
    [[ $(LastByte "$command.bmp") == 200 ]] || Complain "$command: alpha is $(LastByte "$command.bmp")"
done
Works smart-contrast -o out.jpg veil.bmp
Says 'without the alpha plane'
Works smart-contrast -q -o out.bmp out.jpg

# What a command makes of one photograph is its series, fused.
while read -r command files fused options fuseOptions; do
    # shellcheck disable=SC2086 # options are words
    {
        Works series "$command" ${options#--quiet} --out-dir "$command" photo.ppm
        mapfile -t names <out
        ((${#names[@]} == files)) || Complain "$command: ${#names[@]} files"
        [[ $command == single ]] || options='--power 7'
        Works "$command" -q $options -o direct.tif photo.ppm
        names=("${names[@]/#/$command/}")
        Works fuse -q $fuseOptions -o fused.tif "${names[@]:0:fused}"
        Same direct.tif fused.tif
    }
done <<'END'
single 11 11 --noise=medium --exposure=100
daylight-up 39 7 --quiet --exposure=128
daylight-down 39 7 --quiet --exposure=128
END

# Every slider reaches the filter.
Works tone-map -q -o tone.bmp mid.ppm
Sum tone.bmp 1613861635
Works tone-map -q --contrast 20 --noise-amplitude=5 --details=30 --equalization 3 \
    --luminance-only -o tone.bmp mid.ppm
Sum tone.bmp 380831521
Works smart-contrast -q -o same.bmp mid.ppm
Works smart-contrast -q --lod 30,0,7,8,9,1,2,3 -o levels.bmp mid.ppm
Sum same.bmp 1123917928
Sum levels.bmp 3673911433

# Several photographs: the others go on when one fails.
Cli smart-contrast --out-dir results/new mid.ppm junk.dat deep.ppm
[[ $code == 1 && $(<err) == *'junk.dat: '* ]] || Complain "said: $(<err)"
[[ $(ls results/new) == $'deep-vexa.png\nmid-vexa.png' ]] || Complain "results: $(ls results/new)"
[[ $(<err) == *'plenoviz-cli: 2 of 3 pictures done, 1 failed' ]] || Complain "the last line: $(<err)"

# On Windows two names are one, whatever their case.
cp mid.ppm case.bmp
cp mid.ppm other/CASE.bmp
if [[ ${program[0]} == *wine.sh ]]; then
    Fails 2 "CASE.bmp: the result would overwrite the input 'case.bmp'" fuse -o CASE.bmp case.bmp
    Fails 2 "'other/CASE.bmp' and another input" smart-contrast --out-dir d case.bmp other/CASE.bmp
else
    Works smart-contrast -q --out-dir cases case.bmp other/CASE.bmp
fi

# A sample series: exposure times in the files, and a folder gets the whole of it or nothing.
Works sample --out-dir new/series --width 48 --height 32 --frames 3
Says 'sample_1.jpg (1/256 s)'
Says 'sample_3.jpg (1/16 s)'
[[ $(ls new/series) == $'sample_1.jpg\nsample_2.jpg\nsample_3.jpg' ]] || Complain "$(ls new/series)"
LC_ALL=C grep -qaP '\x01\0\0\0\0\x01\0\0' new/series/sample_1.jpg || Complain "no exposure time inside"
Works fuse -q -o sample.png new/series/sample_*.jpg
Works sample -q --hand-held --out-dir hand --width 150 --height 110 --frames 3
Works fuse --report -o hand.png hand/sample_*.jpg
Says 'hand/sample_2.jpg: stays, the others'
Says 'degrees, scale 1.00'
[[ $(grep -c 'brought into register$' out) == 2 ]] || Complain "not in register: $(<out)"
grep -q 'hand.png: 14[0-9] x 10[0-9]' out || Complain "not cropped: $(<out)"
Works fuse --crop --no-crop -o hand.png hand/sample_*.jpg
Says 'hand.png: 150 x 110'
Works fuse --align=off --report -o lying.png hand/sample_*.jpg
Says 'sample_1.jpg: left as it is: not compared'
Differs hand.png lying.png
mkdir -p blocked/sample_2.jpg
Fails 2 'blocked' sample --out-dir blocked --width 16 --height 16 --frames 3
[[ $(ls blocked) == sample_2.jpg ]] || Complain "left behind: $(ls blocked)"
Fails 2 'junk.dat' sample --out-dir junk.dat/below --width 16 --height 16

# Progress goes to a terminal, in one line that is wiped at the end. Ctrl+C leaves nothing behind.
if [[ ${program[0]} != *wine.sh ]]; then
    said=$(script -qec "${program[*]@Q} fuse -o tty.bmp mid.ppm" /dev/null </dev/null)
    [[ $said == *$'\rFusing 1 of 1'*$'\r'*'fused from 1 picture'* ]] || Complain "no progress: $said"
    Picture large.ppm P6 1200 900 255 1
    for line in 'sample --out-dir stopped/here --height 200' 'series single --out-dir partly large.ppm' \
        'tone-map -o stopped.bmp large.ppm'; do
        # shellcheck disable=SC2086
        code=$(
            set -m
            "${program[@]}" $line >out 2>err &
            sleep 0.2
            kill -INT $!
            wait $!
            echo $?
        ) 2>/dev/null
        [[ $code == 1 && $(<err) == 'plenoviz-cli: stopped' ]] || Complain "stopped with $code: $line"
    done
    [[ ! -e stopped.bmp && ! -e stopped ]] || Complain "a stopped command wrote something"
fi
((counted > 70)) || Complain "only $counted command lines tried"
exit $failed
