#!/bin/bash
# Photographs every window and dialog, for eyes to judge: `screens.sh` makes all sheets, and
# `screens.sh dark en 1280x800 [SCENE...]` those pictures alone. They land in
# out/screens/LOOK-LANGUAGE-SIZE/. Light is the system's own look.

set -euo pipefail
. "$(dirname "${BASH_SOURCE[0]}")/../../cmake/screen.sh"
trap ScreenDown EXIT
languages=(en de fr es it pt nl pl cs sv tr ru uk ja zh) # as in the file of texts
scenes=(empty photo tooltip zooms contrast tonemap running finished noise levels progress power
    fusion menu submenu filemenu helpmenu options languages about open save question)

Settle() { sleep "${1:-0.3}"; }
ClickAt() { xdotool mousemove "$1" "$2"; Settle 0.1; xdotool click 1; Settle; }
ClickTool() { ClickAt $(($1)) 23; }
# What stays is kept when it has come to rest, what passes soon.
KeepSoon() { Settle; import -window root "$folder/$1.png"; }
Keep() { Settle; KeepSoon "$1"; }

# A place of the docked dialog, in dialog units from its upper left corner.
dockWidth=333 dockTop=44
ClickDocked() { ClickAt $((width - dockWidth - 1 + $1 * 333 / 190)) $((dockTop + $2 * 163 / 100)); }
WaitFor() { xdotool search --sync --onlyvisible --name "$1" >/dev/null 2>&1 || true; Settle 0.5; }

StillFor()
{
    local last='' now tries
    for ((tries = 0; tries < 60; tries++)); do
        sleep 1
        now=$(import -window root ppm:- | cksum)
        [[ $now == "$last" ]] && return
        last=$now
    done
}

# Presses a key and gives the dialog that it brings the time to come and to be painted.
Bring()
{
    local before tries
    before=$(ScreenSum)
    xdotool key "$1"
    for ((tries = 0; tries < 100; tries++)); do
        sleep 0.2
        [[ $(ScreenSum) == "$before" ]] || break
    done
    Settle 2
}

# The program over the whole screen, with the photograph fitted.
Open()
{
    rm -f "$WINEPREFIX"/drive_c/users/*/AppData/Roaming/Plenoviz/Plenoviz.txt
    StartProgram "$@" || StartProgram "$@" # a busy machine may be too slow for the desktop
    xdotool windowsize --sync "$window" "$width" "$height" 2>/dev/null || true
    xdotool windowmove "$window" 0 0 windowfocus "$window" 2>/dev/null || true
    Settle 0.5
    (($# == 0)) || ClickTool "width - 149"
}
Close() { kill "$programPid" 2>/dev/null || true; wait "$programPid" 2>/dev/null || true; wineserver -w; }

photo="Z:${scratch//\//\\}\\photo.jpg"
Contrast() { Open "$photo"; ClickTool 119; Settle; }
ToneMap() { Open "$photo"; ClickTool 326; StillFor; }
Noise() { Open "$photo"; ClickTool 159; StillFor; }

Scene()
{
    case $1 in
    empty) Open; Keep "$1" ;;
    photo) Open "$photo"; xdotool mousemove 500 400; Keep "$1" ;;
    tooltip) Open "$photo"; xdotool mousemove 119 23; Settle 1.5; Keep "$1" ;;
    zooms) Open "$photo"; ClickTool "width - 53"; Keep "$1" ;;
    contrast) Contrast; ClickDocked 70 24; xdotool key Right; StillFor; Keep "$1" ;;
    tonemap) ToneMap; ClickDocked 60 34; StillFor; ClickDocked 16 154; StillFor; Keep "$1" ;;
    running) ToneMap; ClickDocked 92 181; KeepSoon "$1" ;;
    finished) ToneMap; ClickDocked 92 181; StillFor; Keep "$1" ;;
    noise) Noise; Keep "$1" ;;
    levels) Noise; xdotool key F4; Keep "$1" ;;
    progress) Noise; ClickDocked 92 62; KeepSoon "$1" ;;
    power) Open "$photo"; ClickTool 246; StillFor; Keep "$1" ;;
    fusion)
        Open; ClickTool 199; WaitFor .
        xdotool type --delay 20 "${photo%\\photo.jpg}"; xdotool key Return; Settle 1
        xdotool type --delay 20 '"a.jpg" "b.jpg"'; xdotool key Return; StillFor; Keep "$1" ;;
    menu) Open "$photo"; ClickTool "width - 20"; xdotool key Down; Keep "$1" ;;
    submenu) Open; ClickTool "width - 20"; xdotool key Down Down Right Down; Keep "$1" ;;
    filemenu) Open "$photo"; ClickTool "width - 20"; xdotool key Down Right Down; Keep "$1" ;;
    helpmenu) Open; ClickTool "width - 20"; xdotool key Up Right; Keep "$1" ;;
    options) Open; ClickTool "width - 20"; xdotool key Down Right Down Down Down Return
        Settle 1; Keep "$1" ;;
    languages) Open; ClickTool "width - 20"; xdotool key Down Right Down Down Down Return
        Settle 1; xdotool key F4; Keep "$1" ;;
    about) Open; ClickTool "width - 20"; xdotool key Up Right Return; Settle 1; Keep "$1" ;;
    open) Open; Bring ctrl+o; Keep "$1" ;;
    save) Contrast; ClickDocked 92 174; StillFor; Bring ctrl+s; Keep "$1" ;;
    question) Contrast; ClickDocked 92 174; StillFor; Bring alt+F4; Keep "$1" ;;
    esac
    Close
}

# Sheet LOOK LANGUAGE SIZE SCENES...: one folder of pictures.
Sheet()
{
    local look=$1 language=$2 size=$3
    width=${size%x*} height=${size#*x}
    folder=$root/out/screens/$look-$language-$size
    mkdir -p "$folder" "$scratch/program"
    cp "$(dirname "$PLENOVIZ_PROGRAM")/Plenoviz.exe" "$scratch/program/"
    [[ $look == dark ]] ||
        cp "$root/build/windows/tests/win/PlenovizLight.exe" "$scratch/program/Plenoviz.exe"
    local index
    for index in "${!languages[@]}"; do
        [[ ${languages[index]} == "$language" ]] && break
    done
    sed "s/^Language Current=.*/Language Current=$index/" \
        "$root/res/Plenoviz_loc.ini" >"$scratch/texts.ini"
    "$root/res/make_texts.sh" "$scratch/texts.ini" "$scratch/program/Plenoviz_loc.ini"
    program=$scratch/program/Plenoviz.exe
    screenWidth=$width screenHeight=$height
    ScreenUp
    local scene
    for scene in "${@:4}"; do
        Scene "$scene"
    done
    kill "$screenPid"
}

export PLENOVIZ_PROGRAM=$program
"$root/run" sample --quiet --out-dir "$scratch" --frames 3
mv "$scratch/sample_2.jpg" "$scratch/photo.jpg"
mv "$scratch/sample_1.jpg" "$scratch/a.jpg"
mv "$scratch/sample_3.jpg" "$scratch/b.jpg"
ScreenFolder "${3:-screen}" # sheets of different sizes can be made at the same time
if (($# >= 3)); then
    Sheet "$1" "$2" "$3" $([[ $# -gt 3 ]] && echo "${@:4}" || echo "${scenes[@]}")
    exit
fi
for look in dark light; do
    for language in en de ja; do
        Sheet $look $language 1280x800 "${scenes[@]}"
        for size in 1920x1080 3840x2160; do
            Sheet $look $language $size empty tonemap options save
        done
    done
done
