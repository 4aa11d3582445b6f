#!/bin/bash
# Makes the pictures of the guide again, all of them by the program itself: its sample scene, what
# its tools make of that, and its window. They go into docs/pictures. `pictures.sh windows` makes
# those of the window only.

set -euo pipefail
. "$(dirname "${BASH_SOURCE[0]}")/../cmake/screen.sh"
. "$root/cmake/build.sh"
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

Sample()
{
    Cli sample --out-dir series --width 1290 --height 860
    Cli fuse -o fused.png series/*.jpg
}

Series()
{
    InARow series 168 series/sample_[1-5].jpg
    Keep fused fused.png -resize 860x
    local exposure
    for exposure in 60 100 150; do
        Cli fuse --exposure $exposure -o exposure-$exposure.png series/*.jpg
    done
    InARow exposure 283 exposure-60.png exposure-100.png exposure-150.png
}

Hand()
{
    Cli sample --hand-held --out-dir hand --width 1290 --height 860
    Cli fuse --align off -o lying.png hand/*.jpg
    Cli fuse --no-crop -o hand.png hand/*.jpg
    Details hand-held 428x283+340+130 lying.png hand.png
}

Tools()
{
    local power
    Cli single --exposure 140 -o single.png series/sample_3.jpg
    InARow single 428 series/sample_3.jpg single.png
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

# Begin [PICTURE]: the window as at its first start, where everything has its known place.
Begin()
{
    ForgetSettings
    StartProgram "$@"
    xdotool windowfocus "$window"
    eval "$(xdotool getwindowgeometry --shell "$window")"
    Still
}

Still()
{
    local now='' last tries
    for ((tries = 0; tries < 60; tries++)); do
        last=$now
        sleep 0.7
        import -window root -depth 8 "ppm:$scratch/still"
        now=$(cksum <"$scratch/still")
        [[ $now == "$last" ]] && return
    done
}

# Places count from the corner of the window.
ClickAt() { xdotool mousemove $((X + $1)) $((Y + $2)) click 1; Still; }
FitView() { ClickAt $((WIDTH - 149)) 23; }
DragBy()
{
    xdotool mousemove $((X + $1)) $((Y + $2)) mousedown 1 sleep 0.3
    xdotool mousemove_relative $(($3 / 2)) 0 sleep 0.3 mousemove_relative $(($3 - $3 / 2)) 0 sleep 0.3 mouseup 1
    Still
}
KeepWindow()
{
    xdotool mousemove $((X + 250)) $((Y + HEIGHT + 60))
    Still
    import -window root "$scratch/window.png"
    Keep "$1" "$scratch/window.png" -crop "${WIDTH}x${HEIGHT}+$X+$Y" +repage
    kill "$programPid"
    wait "$programPid" || true
    programPid=''
}

Windows()
{
    local toolbar=23 multi=195 tone=323 smart=115 path=${scratch//\//\\}
    Begin
    ClickAt $multi $toolbar
    xdotool type "Z:$path\\series"
    xdotool key Return
    Still
    xdotool type '"sample_1.jpg" "sample_2.jpg" "sample_3.jpg" "sample_4.jpg" "sample_5.jpg"'
    xdotool key Return
    Still
    FitView
    KeepWindow window

    Begin "Z:$path\\series\\sample_3.jpg"
    ClickAt $tone $toolbar
    ClickAt 644 274 # only the brightness
    ClickAt 644 294 # preview
    DragBy 695 198 60
    KeepWindow window-tone-mapping

    Begin "Z:$path\\fused.png"
    ClickAt $smart $toolbar
    KeepWindow window-smart-contrast
}

"$root/cmake/setup.sh" all
"$root/cmake/deps.sh" windows
Build windows Plenoviz
Sample
if [[ ${1:-} != windows ]]; then
    Series
    Hand
    Tools
fi
ScreenFolder pictures
ScreenUp
Windows
