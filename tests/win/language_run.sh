#!/bin/bash
# Chooses languages in the real program as a person does: Options, the list, OK, the note that asks
# for a restart, in the language chosen; then the program is started anew and speaks it. Screenshots
# stay in out/. Last the window grows.

set -euo pipefail
. "$(dirname "${BASH_SOURCE[0]}")/../../cmake/screen.sh"
trap ScreenDown EXIT

# The program writes the choice beside itself.
mkdir "$scratch/program"
texts=$scratch/program/Plenoviz_loc.ini
cp "$program" "$(dirname "$program")/Plenoviz_loc.ini" "$scratch/program/"
program=$scratch/program/Plenoviz.exe

Texts() { tail -c +3 "$texts" | iconv -f UTF-16LE -t UTF-8 | tr -d '\r'; }
TextOf() { Texts | sed -n "/^\[$1\]/,/^\[/s/^string$2=//p"; }
Complain() { echo "$1" >&2; Shot failed-language; exit 1; }

OpenOptions()
{
    xdotool mousemove $((X + WIDTH - 20)) $((Y + 23)) click 1
    sleep 0.5
    xdotool key Down Right
    sleep 0.3
    Shot "language-$1-menu"
    xdotool key Down Down Down Return
    Until IsOpen "$(TextOf "$1" 44)" || Complain "no Options"
}

StartIn()
{
    StartProgram
    eval "$(xdotool getwindowgeometry --shell "$window")"
    xdotool windowfocus "$window"
    OpenOptions "$1"
    sleep 0.5
    Shot "language-$1-options"
}

# From the start in one language to the one chosen for the next start.
Change()
{
    local keys=(Home) report i
    report=$(TextOf "$2" 38)
    StartIn "$1"
    for ((i = 0; i < $2; i++)); do keys+=(Down); done
    xdotool key "${keys[@]}"
    KeysUntil IsOpen "$report" -- Return
    Shot "language-$2-report"
    KeysUntil IsClosed "$report" -- Return
    KeysUntil HasEnded -- alt+F4
    programPid=''
    [[ $(Texts | grep '^Language Current=') == "Language Current=$2" ]] || Complain "$2 is not stored"
}

ScreenFolder languages
ForgetSettings
mkdir -p "$root/out"
ScreenUp
Change 0 1
Change 1 11
Change 11 13
StartIn 13

# A window that has grown is painted up to its new edges.
IsPainted()
{
    Shot language-13-grown
    [[ $(Pixel $((X + 20)) $((Y + 100))) == "48 48 48" ]] &&
        [[ $(Pixel $((X + 1150)) $((Y + 740))) == "48 48 48" ]]
}
xdotool windowsize "$window" 700 500
sleep 0.5
xdotool windowsize "$window" 1200 800
Until IsPainted || Complain "the grown window is not painted"
