#!/bin/bash
# Uses the program as a person does: real keys and a real mouse on a screen that nobody sees.
# Screenshots stay in out/; what matters in them is checked here.
#
# The photograph carries coloured marks at known places. 100 % puts its centre, (750, 500), on the
# centre of the view area.

set -euo pipefail
. "$(dirname "${BASH_SOURCE[0]}")/../../cmake/screen.sh"
trap ScreenDown EXIT
convert=$(command -v convert-im6.q16 || command -v convert)
failed=0 shot=''

Complain()
{
    echo "$1" >&2
    failed=1
}

# Until CONDITION: tries for ten seconds, since the machine may be busy.
Until()
{
    local tries
    for ((tries = 0; tries < 50; tries++)); do
        "$@" && return
        sleep 0.2
    done
    return 1
}

# ExpectMark WHAT COLOUR X Y: that place of the screen has the colour. The first call after a step
# waits for it; a new shot is taken for every look.
ExpectMark()
{
    local -A colours=([red]="255 0 0" [green]="0 255 0" [blue]="0 0 255" [grey]="48 48 48")
    Until PixelIs "${colours[$2]}" "$3" "$4" ||
        Complain "$1: no $2 at $3,$4 but $(Pixel "$3" "$4") (see out/$shot.png)"
}
PixelIs()
{
    [[ $(Pixel "$2" "$3") == "$1" ]] || { Shot "$shot"; false; }
}

Step() { shot=$1; Shot "$shot"; }
IsOpen() { xdotool search --onlyvisible --name "^$1\$" >/dev/null 2>&1; }
IsClosed() { ! IsOpen "$1"; }
HasEnded() { ! kill -0 "$programPid" 2>/dev/null; }
LooksDifferent() { Shot "$shot" && [[ $(cksum <"$scratch/shot") != "$1" ]]; }
IsStill()
{
    local last=$previous
    sleep 0.8
    Shot "$shot"
    previous=$(cksum <"$scratch/shot")
    [[ $previous == "$last" ]]
}
LooksAs() { Shot "$shot" && [[ $(cksum <"$scratch/shot") == "$1" ]]; }

# KeysUntil CONDITION... -- KEYS: without a window manager a new window may miss its first key.
KeysUntil()
{
    local condition=() tries wait
    while [[ $1 != -- ]]; do
        condition+=("$1")
        shift
    done
    for ((tries = 0; tries < 5; tries++)); do
        xdotool key "${@:2}"
        for ((wait = 0; wait < 10; wait++)); do
            "${condition[@]}" && return
            sleep 0.2
        done
    done
    Complain "keys ${*:2} do not lead to: ${condition[*]}"
}

Settle() { sleep 0.15; }
ClickAt() { xdotool mousemove "$1" "$2"; Settle; xdotool click "${3:-1}"; Settle; }
DragBy()
{
    xdotool mousemove "$1" "$2" mousedown 1
    Settle
    xdotool mousemove $(($1 + $3 / 2)) $(($2 + $4 / 2))
    Settle
    xdotool mousemove $(($1 + $3)) $(($2 + $4))
    Settle
    xdotool mouseup 1
    Settle
}

"$root/run" sample --quiet --out-dir "$scratch/series" --frames 3
"$convert" "$scratch/series/sample_2.jpg" -fill red -draw 'rectangle 361,232 381,252' \
    -fill '#00ff00' -draw 'rectangle 461,232 481,252' \
    -fill blue -draw 'rectangle 740,490 760,510' "$scratch/photo.png"
cp -a "$scratch/photo.png" "$scratch/photo 写真.png"

mkdir -p "$root/out"
ScreenFolder
ForgetSettings
ScreenUp
StartProgram "Z:${scratch//\//\\}\\photo 写真.png"
xdotool windowfocus "$window"

# Where things are: the window's client area, the view area in it, the buttons of the toolbar.
eval "$(xdotool getwindowgeometry --shell "$window")"
toolbar=42 centreX=$((X + (WIDTH - 2) / 2)) centreY=$((Y + toolbar + 3 + (HEIGHT - toolbar - 26) / 2))
zoomBoxX=$((X + WIDTH - 92)) menuX=$((X + WIDTH - 20)) fitX=$((X + WIDTH - 149)) rowY=$((Y + 23))
redX=$((centreX + 371 - 750)) markY=$((centreY + 242 - 500))

Step 1-open
ExpectMark "100 %" blue $centreX $centreY
ExpectMark "100 %" red $redX $markY
ExpectMark "100 %" green $((redX + 100)) $markY

xdotool mousemove $redX $markY
Settle
xdotool click 4
Settle
xdotool click 4
Step 2-zoomed
ExpectMark "two wheel steps are 144 %" green $((redX + 144)) $markY
ExpectMark "two wheel steps keep the point under the cursor" red $redX $markY

DragBy 300 300 60 40
Step 3-panned
ExpectMark "a drag takes the picture along" red $((redX + 60)) $((markY + 40))

ClickAt $fitX $rowY
Step 4-fitted
ExpectMark "fit" blue $centreX $centreY
ExpectMark "fit shows the background at the side" grey $((X + 10)) $centreY

ClickAt $zoomBoxX $rowY
xdotool type 150
xdotool key Return
Step 5-typed
ExpectMark "150 % typed" blue $((centreX + 14)) $((centreY - 14))
xdotool key plus minus minus
Step 6-keys
ExpectMark "keys zoom after typing" blue $((centreX + 11)) $centreY
PixelIs "0 0 255" $((centreX + 14)) $centreY && Complain "keys do not zoom out"

# A tool, and its result compared with the photograph while the right button is down.
before=$(cksum <"$scratch/shot")
ClickAt $((X + 115)) $rowY
shot=7-tool
Until LooksDifferent "$before" || Complain "no tool opens"
DragBy $((X + WIDTH - 185)) $((Y + 198)) 80 0
ClickAt $((X + WIDTH - 173)) $((Y + 329))
xdotool mousemove $((centreX - 200)) $centreY
# Its work is done when all is still.
shot=8-result previous=''
Until IsStill || Complain "the screen does not come to rest"
result=$previous
xdotool mousedown 3
shot=9-compared
Until LooksDifferent "$result" || Complain "the right button compares nothing"
xdotool mouseup 3
shot=10-result-again
Until LooksAs "$result" || Complain "the result does not come back"

ClickAt $menuX $rowY
xdotool key Down Right
Settle
Step 11-menu
xdotool key Down Down Down Return
Until IsOpen Options || Complain "no Options"
Step 12-options
KeysUntil IsClosed Options -- Escape

# Alt+F4 asks about the result; No stays, Yes ends the program.
KeysUntil IsOpen Warning -- alt+F4
Step 13-question
KeysUntil IsClosed Warning -- n
HasEnded && Complain "No ends the program"
KeysUntil IsOpen Warning -- alt+F4
KeysUntil HasEnded -- y
HasEnded && programPid=''
marker=$(grep -h '^Crashed' "$WINEPREFIX"/drive_c/users/*/AppData/Roaming/Plenoviz/Plenoviz.txt)
[[ $marker == "Crashed Last Time=0"* ]] || Complain "left behind: $marker"
exit $failed
