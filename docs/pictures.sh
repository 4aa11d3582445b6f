#!/bin/bash
# Makes the pictures of the guide again, all of them by the program itself: its sample scene, what
# its tools make of that, and its window. They go into docs/pictures.

set -euo pipefail
. "$(dirname "${BASH_SOURCE[0]}")/../cmake/screen.sh"
trap ScreenDown EXIT
target=$root/docs/pictures
series=$scratch/series
cd "$scratch"

Cli() { "$root/run" "$@" --quiet; }

# As large as a page shows it, and small enough for every reader: at most 58 KB.
Keep() { convert "${@:2}" -strip -interlace JPEG -define jpeg:extent=58KB "$target/$1.jpg"; }

# InARow NAME WIDTH FILE...: side by side.
InARow() { Keep "$1" "${@:3}" -resize "$2x" -bordercolor white -border 2x0 +append; }

# One detail at its own size, from each of the files.
Details() { Keep "$1" "${@:3}" -crop "$2" +repage -bordercolor white -border 2x0 +append; }

Series()
{
    Cli sample --out-dir series --width 1290 --height 860
    InARow series 168 series/sample_[1-5].jpg
    Cli fuse -o fused.png series/*.jpg
    Keep fused fused.png -resize 860x
    local exposure
    for exposure in 60 100 150; do
        Cli fuse --exposure $exposure -o exposure-$exposure.png series/*.jpg
    done
    InARow exposure 283 exposure-60.png exposure-100.png exposure-150.png
}

Tools()
{
    local power
    Cli single --exposure 120 --noise medium -o single.png series/sample_3.jpg
    InARow single 428 series/sample_3.jpg single.png
    Cli single --exposure 120 --noise none -o noisy.png series/sample_2.jpg
    Cli single --exposure 120 --noise medium -o calm.png series/sample_2.jpg
    Details noise 428x280+620+500 noisy.png calm.png
    for power in 3 15 39; do
        Cli daylight-up --power $power -o up-$power.png series/sample_2.jpg
    done
    InARow daylight-up 428 series/sample_2.jpg up-39.png
    InARow power 283 up-3.png up-15.png up-39.png
    Cli daylight-down -o down.png series/sample_4.jpg
    InARow daylight-down 428 series/sample_4.jpg down.png
    Cli tone-map --luminance-only --details 15 --equalization 30 -o tone.png series/sample_3.jpg
    InARow tone-mapping 428 series/sample_3.jpg tone.png
    Cli smart-contrast --lod 18,18,16,14,12,10,10,10 -o crisp.png fused.png
    Cli smart-contrast --lod 2,4,8,10,10,10,10,10 -o soft.png fused.png
    Details smart-contrast 283x283+340+130 soft.png fused.png crisp.png
}
Series
Tools
