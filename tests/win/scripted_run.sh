#!/bin/bash
# Uses the program as a person does: real keys and a real mouse on a screen that nobody sees.
# Screenshots stay in out/; what matters in them is checked here.
#
# The photograph carries coloured marks at known places. 100 % puts its centre, (750, 500), on the
# centre of the view area.

set -euo pipefail
. "$(dirname "${BASH_SOURCE[0]}")/../../cmake/screen.sh"
trap ScreenDown EXIT
compare=$(command -v compare-im6.q16 || command -v compare)
failed=0 shot=''

Complain()
{
    echo "$1" >&2
    failed=1
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
Focus() { xdotool search --onlyvisible --name "^$1\$" windowfocus; }
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

InWine() { echo "Z:${1//\//\\}"; }

# TypeName KEY TITLE NAME: opens a file dialog with a key, and types the name of a file in the folder.
TypeName()
{
    KeysUntil IsOpen "$2" -- "$1"
    sleep 0.5
    xdotool key alt+n
    Settle
    xdotool key ctrl+a
    xdotool type --delay 12 "$(InWine "$scratch/s/$3")"
    Shot "$shot"
    KeysUntil IsClosed "$2" -- Return
}

# The view alone, without frame, buttons and what stands in them.
View()
{
    "$convert" "ppm:$scratch/shot" -crop "$((WIDTH - 6))x$((HEIGHT - toolbar - 32))+$((X + 2))+$((Y + toolbar + 6))" \
        +repage "$1"
}
ViewIs() { Shot "$shot" && View "$scratch/now.ppm" && cmp -s "$scratch/now.ppm" "$1"; }
Difference() { { "$compare" -metric RMSE "$1" "$2" null: 2>&1 || true; } | sed 's/.*(\(.*\))/\1/'; }

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

cli=${PLENOVIZ_CLI:-$root/build/release/cli/plenoviz-cli}
[[ -x $cli ]] || "$root/run" --version >/dev/null
"$cli" sample --quiet --out-dir "$scratch/series" --frames 3
"$convert" "$scratch/series/sample_2.jpg" -fill red -draw 'rectangle 361,232 381,252' \
    -fill '#00ff00' -draw 'rectangle 461,232 481,252' \
    -fill blue -draw 'rectangle 740,490 760,510' "$scratch/photo.png"
place="$scratch/Zdjęcia żółte/写真 フォルダ"
mkdir -p "$place"
photo="$place/naïve 猫.png"
mv "$scratch/photo.png" "$photo"
head -c 3000 "$photo" >"$place/broken.png"
ln -s "$place" "$scratch/s" # a short name for what is typed

mkdir -p "$root/out"
ScreenFolder
ForgetSettings
ScreenUp
StartProgram "$(InWine "$photo")"
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

# Starts Smart Contrast, moves a slider by that much, and waits for the result.
SmartContrast()
{
    local before
    before=$(cksum <"$scratch/shot")
    ClickAt $((X + 115)) $rowY
    shot=$1-tool
    Until LooksDifferent "$before" || Complain "no tool opens"
    DragBy $((X + WIDTH - 185)) $((Y + 198)) "$2" 0
    ClickAt $((X + WIDTH - 173)) $((Y + 329))
    xdotool mousemove $((centreX - 200)) $centreY
    # Its work is done when all is still.
    shot=$1-result previous=''
    Until IsStill || Complain "the screen does not come to rest"
}

# A tool, and its result compared with the photograph while the right button is down.
SmartContrast 7 80
result=$previous
xdotool mousedown 3
shot=8-compared
Until LooksDifferent "$result" || Complain "the right button compares nothing"
xdotool mouseup 3
shot=9-result-again
Until LooksAs "$result" || Complain "the result does not come back"

ClickAt $menuX $rowY
xdotool key Down Right
Settle
Step 10-menu
xdotool key Down Down Down Return
Until IsOpen Options || Complain "no Options"
sleep 0.5
Step 11-options
KeysUntil IsClosed Options -- Escape

# Saved in every format, opened again: the same pixels on the screen and in the files.
ClickAt $zoomBoxX $rowY
xdotool type 100
xdotool key Return
shot=12-save previous=''
Until IsStill || Complain "the screen does not come to rest"
View "$scratch/result.ppm"
for name in saved.bmp saved.jpg saved.tif saved.png; do
    shot=12-save-${name#*.}
    TypeName ctrl+s 'Save As...' $name
    Until test -s "$place/$name" || Complain "no $name"
done
for name in saved.bmp saved.tif saved.jpg; do
    difference=$(Difference "$place/$name" "$place/saved.png")
    [[ $difference == 0 || $name == *.jpg && $difference == 0.0[0-3]* ]] || Complain "$name is $difference off"
done
for name in saved.tif saved.png; do
    shot=13-reopened-${name#*.}
    TypeName ctrl+o 'Select Source for Vexa' $name
    Until ViewIs "$scratch/result.ppm" || Complain "$name does not look like the result"
done

# A broken file: one message, and everything stays.
shot=14-broken
TypeName ctrl+o 'Select Source for Vexa' broken.png
patience=10 Until LooksDifferent "$(cksum <"$scratch/shot")" || true
Shot "$shot"
ViewIs "$scratch/result.ppm" && Complain "nothing is said of a broken file"
KeysUntil ViewIs "$scratch/result.ppm" -- Return

SmartContrast 15 40

# Alt+F4 asks about the result; No stays, Yes ends the program.
KeysUntil IsOpen Warning -- alt+F4
Step 16-question
KeysUntil IsClosed Warning -- n
HasEnded && Complain "No ends the program"
KeysUntil IsOpen Warning -- alt+F4
KeysUntil HasEnded -- y
HasEnded && programPid=''
Marker() { grep -hc '^Crashed Last Time=1' "$WINEPREFIX"/drive_c/users/*/AppData/Roaming/Plenoviz/Plenoviz.txt; }
[[ $(Marker) == 0 ]] || Complain "a proper end is taken for a crash"

# Killed, the program says so at its next start, and only then.
StartProgram "$(InWine "$photo")"
[[ $(Marker) == 1 ]] || Complain "a running program leaves no mark"
kill -9 "$programPid"
wait "$programPid" 2>/dev/null || true
wine "$program" "$(InWine "$photo")" </dev/null >/dev/null 2>&1 &
programPid=$!
Until IsOpen Warning || Complain "no warning after a crash"
Focus Warning # the dead window has taken the focus along
Step 17-crashed
KeysUntil IsClosed Warning -- Return
Until IsOpen 'Plenoviz.*' || Complain "no window after the warning"
Focus 'Plenoviz.*'
KeysUntil HasEnded -- alt+F4
StartProgram
IsOpen Warning && Complain "warned twice"
Focus 'Plenoviz.*'
Step 18-empty
KeysUntil HasEnded -- alt+F4
HasEnded && programPid=''
exit $failed
